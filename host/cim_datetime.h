// A CIM date-time: a timestamp with its UTC offset, an interval, or null.
#pragma once

#include <string>

namespace NZARVEK20 {

class TCIMDateTime {
 public:
  TCIMDateTime();
  // The 25-character CIM text; anything else throws TVRXException (21).
  explicit TCIMDateTime(const std::string& text);
  // A timestamp; parts out of their ranges throw TVRXException (21).
  TCIMDateTime(unsigned short year, unsigned short month, unsigned int day, unsigned short hours,
               unsigned short minutes, unsigned short seconds, unsigned int microseconds,
               short utcOffsetMinutes);
  // An interval; parts out of their ranges throw TVRXException (21).
  TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes,
               unsigned short seconds, unsigned int microseconds);

  void Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hours,
           unsigned short minutes, unsigned short seconds, unsigned int microseconds,
           short utcOffsetMinutes);

  bool IsNull() const { return kind_ == Kind::Null; }
  bool IsInterval() const { return kind_ == Kind::Interval; }
  // The 25-character CIM text; the empty string for a null date-time.
  std::string ToString() const;

  unsigned int GetYear() const { return year_; }
  unsigned int GetMonth() const { return month_; }
  unsigned int GetDay() const { return day_; }  // days of an interval
  unsigned int GetHours() const { return hours_; }
  unsigned int GetMinutes() const { return minutes_; }
  unsigned int GetSeconds() const { return seconds_; }
  unsigned int GetMicroseconds() const { return microseconds_; }
  int GetUtcOffset() const { return utcOffset_; }

  bool operator==(const TCIMDateTime& other) const;
  bool operator!=(const TCIMDateTime& other) const { return !(*this == other); }

 private:
  enum class Kind : unsigned char { Null, Timestamp, Interval };
  // Parts already checked against their ranges.
  void SetTime(unsigned short hours, unsigned short minutes, unsigned short seconds,
               unsigned int microseconds);

  // As small as the ranges allow: a date-time is held inside every value that may carry one.
  unsigned int day_ = 0, microseconds_ = 0;
  unsigned short year_ = 0;
  short utcOffset_ = 0;
  unsigned char month_ = 0, hours_ = 0, minutes_ = 0, seconds_ = 0;
  Kind kind_;
};

}  // namespace NZARVEK20
