#include "winapi/machine/machine_schema.h"

#include <cctype>
#include <limits>
#include <map>

#include "winapi/machine/machine.h"
#include "winapi/machine/wmi_values.h"
#include "winapi/support/calendar.h"

namespace winapi {

namespace {

enum class Shape {
  Object,
  Array,
  String,
  Boolean,
  Integer,
  UtcTime,
  Failure,
  FailureNumber,
  WmiValue,
  WmiDate
};

struct Rule {
  Shape shape;
  std::int64_t min = 0;
  std::uint64_t max = 0;
};

constexpr std::int64_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::uint64_t kIntMax = std::numeric_limits<std::int32_t>::max();
constexpr std::uint64_t kWord = 0xFFFF;
constexpr std::uint64_t kDword = 0xFFFFFFFF;
constexpr std::uint64_t kQword = std::numeric_limits<std::uint64_t>::max();

const Rule kObject{Shape::Object}, kArray{Shape::Array}, kString{Shape::String},
    kBoolean{Shape::Boolean};
const Rule kWordInt{Shape::Integer, 0, kWord}, kDwordInt{Shape::Integer, 0, kDword};
const Rule kQwordInt{Shape::Integer, 0, kQword}, kLong{Shape::Integer, kIntMin, kIntMax};

// "a.*" stands for any member name of object a, "a[]" for any element of array a.
const std::map<std::string, Rule> kDescribed = {
    {"", kObject},
    {"computerName", kString},
    {"userName", kString},
    {"ansiCodePage", {Shape::Integer, 1, kWord}},
    {"now", {Shape::UtcTime}},
    {"environment", kObject},
    {"environment.*", kString},
    {"version", kObject},
    {"version.major", kDwordInt},
    {"version.minor", kDwordInt},
    {"version.build", kDwordInt},
    {"version.platformId", kDwordInt},
    {"version.csdVersion", kString},
    {"version.servicePackMajor", kWordInt},
    {"version.servicePackMinor", kWordInt},
    {"version.suiteMask", kWordInt},
    {"version.productType", {Shape::Integer, 0, 0xFF}},
    {"version.productInfo", kDwordInt},
    {"system", kObject},
    {"system.processorArchitecture", kWordInt},
    {"system.pageSize", kDwordInt},
    {"system.numberOfProcessors", {Shape::Integer, 1, kDword}},
    {"system.wow64", kBoolean},
    {"system.windowsDirectory", kString},
    {"system.systemDirectory", kString},
    {"memory", kObject},
    {"memory.memoryLoad", {Shape::Integer, 0, 100}},
    {"memory.totalPhys", kQwordInt},
    {"memory.availPhys", kQwordInt},
    {"memory.totalPageFile", kQwordInt},
    {"memory.availPageFile", kQwordInt},
    {"memory.totalVirtual", kQwordInt},
    {"memory.availVirtual", kQwordInt},
    {"performance", kObject},
    {"performance.*", kQwordInt},
    {"performance.handleCount", kDwordInt},
    {"performance.processCount", kDwordInt},
    {"performance.threadCount", kDwordInt},
    // PDH hands the counter out as a signed 64-bit LONGLONG.
    {"uptimeSeconds", {Shape::Integer, 0, std::numeric_limits<std::int64_t>::max()}},
    {"timeZone", kObject},
    {"timeZone.bias", kLong},
    {"timeZone.standardName", kString},
    {"timeZone.standardBias", kLong},
    {"timeZone.daylightName", kString},
    {"timeZone.daylightBias", kLong},
    {"timeZone.standardDate", kObject},
    {"timeZone.daylightDate", kObject},
    {"pageFiles", kArray},
    {"pageFiles[]", kObject},
    {"pageFiles[].name", kString},
    {"pageFiles[].totalSize", kQwordInt},
    {"pageFiles[].totalInUse", kQwordInt},
    {"pageFiles[].peakUsage", kQwordInt},
    {"users", kArray},
    {"users[]", kObject},
    {"users[].name", kString},
    {"users[].fullName", kString},
    {"users[].comment", kString},
    {"users[].flags", kDwordInt},
    {"users[].homeDir", kString},
    {"users[].countryCode", kDwordInt},
    {"users[].passwordAge", kDwordInt},
    {"users[].lastLogon", kDwordInt},
    {"users[].userId", kDwordInt},
    {"loggedOn", kArray},
    {"loggedOn[]", kObject},
    {"loggedOn[].user", kString},
    {"loggedOn[].domain", kString},
    {"loggedOn[].logonServer", kString},
    {"loggedOn[].otherDomains", kString},
    {"wmi", kObject},
    {"wmi.*", kArray},
    {"wmi.*[]", kObject},
    {"wmi.*[].*", {Shape::WmiValue}},
    {"wmi.*[].*.date", {Shape::WmiDate}},
    {"commands", kObject},
    {"commands.*", kString},
    {"missing", kArray},
    {"missing[]", kString},
    {"fail", kObject},
    {"fail.*", {Shape::Failure}},
    {"fail.*.return", {Shape::FailureNumber}},
    {"fail.*.lastError", kDwordInt},
};

// The members of timeZone.standardDate and timeZone.daylightDate (a SYSTEMTIME).
const std::pair<const char*, Rule> kTransitionFields[] = {
    {"year", {Shape::Integer, 0, 30827}},  {"month", {Shape::Integer, 0, 12}},
    {"dayOfWeek", {Shape::Integer, 0, 6}}, {"day", {Shape::Integer, 0, 31}},
    {"hour", {Shape::Integer, 0, 23}},     {"minute", {Shape::Integer, 0, 59}},
    {"second", {Shape::Integer, 0, 59}},   {"milliseconds", {Shape::Integer, 0, 999}},
};

std::map<std::string, Rule> allMembers() {
  std::map<std::string, Rule> members = kDescribed;
  for (const char* date : {"timeZone.standardDate", "timeZone.daylightDate"})
    for (const auto& [field, rule] : kTransitionFields)
      members.emplace(std::string(date) + "." + field, rule);
  return members;
}

const std::map<std::string, Rule> kMembers = allMembers();

bool isHexNumber(const nlohmann::json& value) {
  if (!value.is_string()) return false;
  const std::string& text = value.get_ref<const std::string&>();
  if (text.size() < 3 || text.size() > 18 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X'))
    return false;
  for (std::size_t i = 2; i < text.size(); ++i)
    if (!std::isxdigit(static_cast<unsigned char>(text[i]))) return false;
  return true;
}

bool isUtcTime(const nlohmann::json& value) {
  static const std::int64_t kFirstSystemTime = daysFromCivil(1601, 1, 1) * 86400000;
  auto time = value.is_string() ? parseUtcTime(value.get_ref<const std::string&>()) : std::nullopt;
  return time && *time >= kFirstSystemTime;
}

bool inRange(const nlohmann::json& value, const Rule& rule) {
  if (!value.is_number_unsigned()) return value.get<std::int64_t>() >= rule.min;
  std::uint64_t number = value.get<std::uint64_t>();
  return number <= rule.max && (rule.min <= 0 || number >= static_cast<std::uint64_t>(rule.min));
}

// The problem with `value`, or "" when it fits the rule.
std::string problemWith(const nlohmann::json& value, const Rule& rule) {
  switch (rule.shape) {
    case Shape::Object:
      return value.is_object() ? "" : "expected an object";
    case Shape::Array:
      return value.is_array() ? "" : "expected an array";
    case Shape::String:
      return value.is_string() ? "" : "expected a string";
    case Shape::Boolean:
      return value.is_boolean() ? "" : "expected true or false";
    case Shape::Integer:
      if (!value.is_number_integer()) return "expected an integer";
      return inRange(value, rule) ? ""
                                  : "expected an integer from " + std::to_string(rule.min) +
                                        " to " + std::to_string(rule.max);
    case Shape::UtcTime:
      return isUtcTime(value)
                 ? ""
                 : "expected a UTC time like \"2026-11-22T10:15:30Z\" (from year 1601)";
    case Shape::Failure:
      return value.is_number_integer() || isHexNumber(value) || value.is_object()
                 ? ""
                 : "expected a number, a \"0x…\" string or {\"return\": …, \"lastError\": …}";
    case Shape::FailureNumber:
      return value.is_number_integer() || isHexNumber(value)
                 ? ""
                 : "expected a number or a \"0x…\" string";
    case Shape::WmiValue:
      return wmiValueProblem(value);
    case Shape::WmiDate:
      return wmiDateProblem(value);
  }
  return "";
}

std::string join(const std::string& parent, const std::string& name) {
  return parent.empty() ? name : parent + "." + name;
}

std::string childPattern(const std::string& pattern, const std::string& name) {
  std::string exact = join(pattern, name);
  return kMembers.count(exact) ? exact : join(pattern, "*");
}

void check(const nlohmann::json& value, const std::string& pattern, const std::string& path,
           const std::string& file) {
  auto rule = kMembers.find(pattern);
  if (rule == kMembers.end()) return;
  std::string problem = problemWith(value, rule->second);
  if (!problem.empty()) throwMemberError(file, path, problem);
  if (value.is_object()) {
    for (const auto& [name, member] : value.items())
      check(member, childPattern(pattern, name), join(path, name), file);
  } else if (value.is_array()) {
    for (std::size_t i = 0; i < value.size(); ++i)
      check(value[i], pattern + "[]", path + "[" + std::to_string(i) + "]", file);
  }
}

}  // namespace

void checkMachineDescription(const nlohmann::json& description, const std::string& file) {
  check(description, "", "", file);
}

void throwMemberError(const std::string& file, const std::string& path,
                      const std::string& problem) {
  throw MachineError(file + ": " + (path.empty() ? std::string("top level") : "member " + path) +
                     ": " + problem);
}

std::uint64_t failureNumber(const nlohmann::json& value) {
  if (value.is_string())
    return std::stoull(value.get_ref<const std::string&>().substr(2), nullptr, 16);
  return value.is_number_unsigned() ? value.get<std::uint64_t>()
                                    : static_cast<std::uint64_t>(value.get<std::int64_t>());
}

}  // namespace winapi
