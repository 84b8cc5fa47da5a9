#include "winapi/support/ole_date.h"

#include <cctype>
#include <cmath>
#include <cstdint>
#include <vector>

namespace winapi {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
// 0100-01-01 and 9999-12-31; a date lies within a day of them (the fraction is the time).
constexpr double kFirstDay = -657434.0;
constexpr double kLastDay = 2958465.0;

std::int64_t epochDays() { return daysFromCivil(1899, 12, 30); }

// The numbers of `text` laid out as `pattern`, where 'd' stands for a digit and any other
// character for itself; nullopt when the text does not have that layout.
std::optional<std::vector<unsigned>> numbersIn(std::string_view text, std::string_view pattern) {
  if (text.size() != pattern.size()) return std::nullopt;
  std::vector<unsigned> numbers;
  bool inNumber = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (pattern[i] != 'd') {
      if (text[i] != pattern[i]) return std::nullopt;
      inNumber = false;
      continue;
    }
    if (!std::isdigit(static_cast<unsigned char>(text[i]))) return std::nullopt;
    if (!inNumber) numbers.push_back(0);
    numbers.back() = numbers.back() * 10 + static_cast<unsigned>(text[i] - '0');
    inNumber = true;
  }
  return numbers;
}

}  // namespace

std::optional<double> oleDateFromText(std::string_view text) {
  auto numbers = numbersIn(text, "dddd-dd-dd");
  if (!numbers) numbers = numbersIn(text, "dddd-dd-ddTdd:dd:dd");
  if (!numbers) return std::nullopt;
  numbers->resize(6, 0);
  const int year = static_cast<int>((*numbers)[0]);
  const unsigned month = (*numbers)[1], day = (*numbers)[2];
  const unsigned hour = (*numbers)[3], minute = (*numbers)[4], second = (*numbers)[5];
  if (year < kFirstYear || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month) ||
      hour > 23 || minute > 59 || second > 59)
    return std::nullopt;
  const double days = static_cast<double>(daysFromCivil(year, month, day) - epochDays());
  const double time = static_cast<double>(hour * 3600 + minute * 60 + second) / kSecondsPerDay;
  return days < 0 ? days - time : days + time;
}

std::optional<CivilTime> civilFromOleDate(double date) {
  if (!(date > kFirstDay - 1 && date < kLastDay + 1)) return std::nullopt;  // NaN too
  const double days = std::trunc(date);
  const std::int64_t seconds = std::llround(std::fabs(date - days) * kSecondsPerDay);
  const std::int64_t sinceEpoch =
      (static_cast<std::int64_t>(days) + epochDays()) * kSecondsPerDay + seconds;
  CivilTime time = civilFromMilliseconds(sinceEpoch * 1000);
  if (time.year < kFirstYear || time.year > kLastYear) return std::nullopt;
  return time;
}

}  // namespace winapi
