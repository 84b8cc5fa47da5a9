#include "winapi/machine/wmi_values.h"

#include <cstdint>
#include <limits>

#include "winapi/support/bstr.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/ole_date.h"

namespace winapi {

namespace {

constexpr CIMTYPE kCimSint32 = 3;
constexpr CIMTYPE kCimString = 8;
constexpr CIMTYPE kCimDatetime = 101;

bool fitsLong(const nlohmann::json& number) {
  if (number.is_number_unsigned())
    return number.get<std::uint64_t>() <= std::numeric_limits<LONG>::max();
  std::int64_t value = number.get<std::int64_t>();
  return value >= std::numeric_limits<LONG>::min() && value <= std::numeric_limits<LONG>::max();
}

double dateOf(const nlohmann::json& value) {
  return *oleDateFromText(value.at("date").get_ref<const std::string&>());
}

}  // namespace

std::string wmiValueProblem(const nlohmann::json& value) {
  if (value.is_string()) return "";
  if (value.is_number_integer())
    return fitsLong(value) ? "" : "expected an integer from -2147483648 to 2147483647";
  if (value.is_object() && value.size() == 1 && value.contains("date")) return "";
  return "expected a string, an integer or {\"date\": …}";
}

std::string wmiDateProblem(const nlohmann::json& date) {
  if (!date.is_string()) return "expected a string";
  return oleDateFromText(date.get_ref<const std::string&>())
             ? ""
             : "expected \"YYYY-MM-DD\" or \"YYYY-MM-DDThh:mm:ss\", from year 100 to 9999";
}

bool toVariant(const nlohmann::json& value, VARIANT& variant) {
  if (value.is_string()) {
    BSTR text = newBstr(utf8ToWide(value.get_ref<const std::string&>()));
    if (!text) return false;
    variant.vt = VT_BSTR;
    variant.bstrVal = text;
  } else if (value.is_object()) {
    variant.vt = VT_DATE;
    variant.date = dateOf(value);
  } else {
    variant.vt = VT_I4;
    variant.lVal = value.get<LONG>();
  }
  return true;
}

CIMTYPE cimTypeOf(const nlohmann::json& value) {
  return value.is_string() ? kCimString : value.is_object() ? kCimDatetime : kCimSint32;
}

}  // namespace winapi
