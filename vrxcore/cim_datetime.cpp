#include "host/cim_datetime.h"

#include <cstdlib>

#include "host/status.h"

namespace NZARVEK20 {
namespace {

[[noreturn]] void invalid(const std::string& what) {
  throw TVRXException(TVRXStatusCode(VRX_INVALID_DATETIME), what);
}

bool isLeapYear(unsigned int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

unsigned int daysInMonth(unsigned int year, unsigned int month) {
  static const unsigned int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

// The digits of text[from, from + count), or throws.
unsigned int digitsAt(const std::string& text, size_t from, size_t count) {
  unsigned int value = 0;
  for (size_t i = from; i < from + count; ++i) {
    if (text[i] < '0' || text[i] > '9') invalid("non-digit in date-time text: " + text);
    value = value * 10 + static_cast<unsigned int>(text[i] - '0');
  }
  return value;
}

void checkTime(unsigned int hours, unsigned int minutes, unsigned int seconds,
               unsigned int microseconds) {
  if (hours > 23 || minutes > 59 || seconds > 59 || microseconds > 999999)
    invalid("time of day out of range");
}

// `value` in decimal, at least `width` digits, zeros in front (printf's "%0<width>u"): dates are
// written for every instance, and this is the hot part of writing them.
void appendDigits(std::string& text, unsigned int value, size_t width) {
  char digits[10];
  size_t count = 0;
  do {
    digits[count++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  if (count < width) text.append(width - count, '0');
  while (count > 0) text += digits[--count];
}

}  // namespace

TCIMDateTime::TCIMDateTime() : kind_(Kind::Null) {}

TCIMDateTime::TCIMDateTime(unsigned short year, unsigned short month, unsigned int day,
                           unsigned short hours, unsigned short minutes, unsigned short seconds,
                           unsigned int microseconds, short utcOffsetMinutes)
    : kind_(Kind::Null) {
  Set(year, month, day, hours, minutes, seconds, microseconds, utcOffsetMinutes);
}

TCIMDateTime::TCIMDateTime(unsigned int days, unsigned short hours, unsigned short minutes,
                           unsigned short seconds, unsigned int microseconds)
    : kind_(Kind::Interval) {
  if (days > 99999999) invalid("interval of more than 99999999 days");
  checkTime(hours, minutes, seconds, microseconds);
  day_ = days;
  SetTime(hours, minutes, seconds, microseconds);
}

void TCIMDateTime::Set(unsigned short year, unsigned short month, unsigned int day,
                       unsigned short hours, unsigned short minutes, unsigned short seconds,
                       unsigned int microseconds, short utcOffsetMinutes) {
  if (year > 9999) invalid("year out of range");
  if (month < 1 || month > 12) invalid("month out of range");
  // Parts must name a day that exists, as the text form must: 30 February never prints.
  if (day < 1 || day > daysInMonth(year, month)) invalid("day out of range for its month");
  checkTime(hours, minutes, seconds, microseconds);
  if (utcOffsetMinutes < -999 || utcOffsetMinutes > 999) invalid("UTC offset out of range");
  kind_ = Kind::Timestamp;
  year_ = year;
  month_ = static_cast<unsigned char>(month);
  day_ = day;
  SetTime(hours, minutes, seconds, microseconds);
  utcOffset_ = utcOffsetMinutes;
}

void TCIMDateTime::SetTime(unsigned short hours, unsigned short minutes, unsigned short seconds,
                           unsigned int microseconds) {
  hours_ = static_cast<unsigned char>(hours);
  minutes_ = static_cast<unsigned char>(minutes);
  seconds_ = static_cast<unsigned char>(seconds);
  microseconds_ = microseconds;
}

TCIMDateTime::TCIMDateTime(const std::string& text) : kind_(Kind::Null) {
  if (text.size() != 25) invalid("date-time text is not 25 characters long: " + text);
  if (text[14] != '.') invalid("date-time text without '.' at position 15: " + text);
  const char sign = text[21];
  const unsigned int micro = digitsAt(text, 15, 6);
  if (sign == ':') {
    if (text.compare(22, 3, "000") != 0) invalid("interval not ending in :000: " + text);
    *this = TCIMDateTime(digitsAt(text, 0, 8), digitsAt(text, 8, 2), digitsAt(text, 10, 2),
                         digitsAt(text, 12, 2), micro);
    return;
  }
  if (sign != '+' && sign != '-') invalid("date-time text without '+', '-' or ':': " + text);
  const unsigned int year = digitsAt(text, 0, 4), month = digitsAt(text, 4, 2),
                     day = digitsAt(text, 6, 2);
  const int offset = static_cast<int>(digitsAt(text, 22, 3));
  Set(year, month, day, digitsAt(text, 8, 2), digitsAt(text, 10, 2), digitsAt(text, 12, 2), micro,
      static_cast<short>(sign == '-' ? -offset : offset));
}

std::string TCIMDateTime::ToString() const {
  if (kind_ == Kind::Null) return std::string();
  std::string text;
  text.reserve(25);
  if (kind_ == Kind::Interval) {
    appendDigits(text, GetDay(), 8);
    for (unsigned int part : {GetHours(), GetMinutes(), GetSeconds()}) appendDigits(text, part, 2);
    text += '.';
    appendDigits(text, GetMicroseconds(), 6);
    text += ":000";
    return text;
  }
  appendDigits(text, GetYear(), 4);
  for (unsigned int part : {GetMonth(), GetDay(), GetHours(), GetMinutes(), GetSeconds()})
    appendDigits(text, part, 2);
  text += '.';
  appendDigits(text, GetMicroseconds(), 6);
  text += GetUtcOffset() < 0 ? '-' : '+';
  appendDigits(text, static_cast<unsigned int>(std::abs(GetUtcOffset())), 3);
  return text;
}

bool TCIMDateTime::operator==(const TCIMDateTime& other) const {
  return kind_ == other.kind_ && year_ == other.year_ && month_ == other.month_ &&
         day_ == other.day_ && hours_ == other.hours_ && minutes_ == other.minutes_ &&
         seconds_ == other.seconds_ && microseconds_ == other.microseconds_ &&
         utcOffset_ == other.utcOffset_;
}

}  // namespace NZARVEK20
