// TimeZoneInformation holds the zone as it was set: biases, the two transitions as SYSTEMTIMEs
// and, since Vista, names that are references into tzres.dll ("@tzres.dll,-112"), resolved here
// through the zone's entry under Time Zones, whose Dynamic DST key holds each year's rules.
#include "winapi/machine/registry_time_zone.h"

#include <algorithm>
#include <optional>
#include <string>

#include "winapi/machine/registry_values.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

const RegistryPath kZoneKey{L"SYSTEM", L"CurrentControlSet", L"Control", L"TimeZoneInformation"};
const RegistryPath kZones{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion",
                          L"Time Zones"};
constexpr std::size_t kSystemTimeSize = 16;
// TZI: Bias, StandardBias, DaylightBias, then the standard and daylight dates.
constexpr std::size_t kRulesSize = 12 + 2 * kSystemTimeSize;

const char* const kDateFields[] = {"year", "month",  "dayOfWeek", "day",
                                   "hour", "minute", "second",    "milliseconds"};
const unsigned kDateLimits[] = {30827, 12, 6, 31, 23, 59, 59, 999};

struct Rules {
  std::int32_t bias = 0, standardBias = 0, daylightBias = 0;
  std::string standardDate = std::string(kSystemTimeSize, '\0');
  std::string daylightDate = std::string(kSystemTimeSize, '\0');
};

std::int32_t signedAt(std::string_view data, std::size_t at) {
  return static_cast<std::int32_t>(littleEndian(data, at, 4));
}

Rules rulesOf(std::string_view tzi) {
  return {signedAt(tzi, 0), signedAt(tzi, 4), signedAt(tzi, 8),
          std::string(tzi.substr(12, kSystemTimeSize)),
          std::string(tzi.substr(12 + kSystemTimeSize, kSystemTimeSize))};
}

// A SYSTEMTIME Windows could act on: fields in range, and a day that names a week (1-5) in a
// yearly rule or a day of the month in a dated one.
bool validDate(std::string_view date) {
  for (std::size_t i = 0; i < 8; ++i)
    if (littleEndian(date, 2 * i, 2) > kDateLimits[i]) return false;
  unsigned year = littleEndian(date, 0, 2), month = littleEndian(date, 2, 2);
  unsigned day = littleEndian(date, 6, 2);
  return month == 0 || (year == 0 ? day >= 1 && day <= 5 : day >= 1);
}

nlohmann::json transition(std::string_view date) {
  nlohmann::json rule = nlohmann::json::object();
  for (std::size_t i = 0; i < 8; ++i) rule[kDateFields[i]] = littleEndian(date, 2 * i, 2);
  return rule;
}

// The rules of the year from Dynamic DST: before its first entry the first, after its last
// the last, as Windows extends them.
std::optional<Rules> yearRules(const RegistryKey& machine, const RegistryPath& zone, int year) {
  RegistryPath dynamic = below(zone, {L"Dynamic DST"});
  auto first = dwordAt(machine, dynamic, L"FirstEntry");
  auto last = dwordAt(machine, dynamic, L"LastEntry");
  if (!first || !last || *first > *last) return std::nullopt;
  int chosen = std::clamp<int>(year, static_cast<int>(*first), static_cast<int>(*last));
  std::wstring name = std::to_wstring(chosen);
  auto tzi = bytesAt(machine, dynamic, name.c_str(), kRulesSize);
  if (!tzi) return std::nullopt;
  return rulesOf(*tzi);
}

// A name as the key holds it, or the zone's own name when it is a reference into tzres.dll or
// the key holds none.
std::string zoneName(const RegistryKey& machine, const wchar_t* value,
                     const std::optional<RegistryPath>& zone, const wchar_t* zoneValue) {
  std::string name = textAt(machine, kZoneKey, value).value_or("");
  if ((!name.empty() && name[0] != '@') || !zone) return name;
  return textAt(machine, *zone, zoneValue).value_or(name);
}

// The zone's entry under Time Zones, named by TimeZoneKeyName; nullopt when either is missing.
std::optional<RegistryPath> zoneEntry(const RegistryKey& machine) {
  auto name = textAt(machine, kZoneKey, L"TimeZoneKeyName");
  if (!name || name->empty()) return std::nullopt;
  RegistryPath entry = kZones;
  entry.push_back(utf8ToWide(*name));
  if (!machine.find(entry)) return std::nullopt;
  return entry;
}

// Both transitions or neither: a rule Windows could not act on leaves the zone without one.
void keepUsableTransitions(Rules& rules) {
  bool daylight = littleEndian(rules.daylightDate, 2, 2) != 0;
  bool standard = littleEndian(rules.standardDate, 2, 2) != 0;
  if (!validDate(rules.standardDate) || !validDate(rules.daylightDate) || daylight != standard)
    rules.standardDate = rules.daylightDate = std::string(kSystemTimeSize, '\0');
}

std::int32_t signedDword(const RegistryKey& machine, const wchar_t* name) {
  return static_cast<std::int32_t>(dwordAt(machine, kZoneKey, name).value_or(0));
}

// The rules the key itself holds; nullopt without a Bias.
std::optional<Rules> keyRules(const RegistryKey& machine) {
  auto bias = dwordAt(machine, kZoneKey, L"Bias");
  if (!bias) return std::nullopt;
  Rules rules;
  rules.bias = static_cast<std::int32_t>(*bias);
  rules.standardBias = signedDword(machine, L"StandardBias");
  rules.daylightBias = signedDword(machine, L"DaylightBias");
  rules.standardDate =
      bytesAt(machine, kZoneKey, L"StandardStart", kSystemTimeSize).value_or(rules.standardDate);
  rules.daylightDate =
      bytesAt(machine, kZoneKey, L"DaylightStart", kSystemTimeSize).value_or(rules.daylightDate);
  return rules;
}

// The rules of the zone's entry (TZI), for a key that names its zone and holds nothing more, as
// Wine writes it.
std::optional<Rules> entryRules(const RegistryKey& machine,
                                const std::optional<RegistryPath>& zone) {
  if (!zone) return std::nullopt;
  auto tzi = bytesAt(machine, *zone, L"TZI", kRulesSize);
  if (!tzi) return std::nullopt;
  return rulesOf(*tzi);
}

}  // namespace

nlohmann::json registryTimeZone(const RegistryKey& machine, int year) {
  std::optional<RegistryPath> zone = zoneEntry(machine);
  std::optional<Rules> found = keyRules(machine);
  if (!found) found = entryRules(machine, zone);
  if (!found) return nullptr;
  Rules rules = *found;
  bool dynamic = dwordAt(machine, kZoneKey, L"DynamicDaylightTimeDisabled").value_or(0) == 0;
  if (zone && dynamic)
    if (auto ofYear = yearRules(machine, *zone, year)) rules = *ofYear;
  keepUsableTransitions(rules);
  return {{"bias", rules.bias},
          {"standardName", zoneName(machine, L"StandardName", zone, L"Std")},
          {"standardBias", rules.standardBias},
          {"daylightName", zoneName(machine, L"DaylightName", zone, L"Dlt")},
          {"daylightBias", rules.daylightBias},
          {"standardDate", transition(rules.standardDate)},
          {"daylightDate", transition(rules.daylightDate)}};
}

}  // namespace winapi
