// Loading a machine: recognising the directory, reading machine.json into typed members, and
// the process-wide current machine.
#include "winapi/machine/machine.h"

#include <atomic>
#include <filesystem>
#include <mutex>

#include "winapi/files/folder_files.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/image_machine.h"
#include "winapi/machine/machine_file.h"
#include "winapi/machine/machine_schema.h"
#include "winapi/machine/offline_volume.h"
#include "winapi/machine/registry_folder.h"
#include "winapi/machine/wine_prefix.h"
#include "winapi/support/calendar.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/module_names.h"

extern char** environ;

namespace fs = std::filesystem;

namespace winapi {

namespace {

constexpr const char* kNoDirectoryName = "LOCALHOST";
// Variables of the real process with this prefix reach the machine's process, so that a
// collector switch can be given on the Linux command line.
constexpr std::string_view kOverlayPrefix = "VRX_";

// An entry that is there but cannot be followed (a link to itself) counts, so that reading it
// reports the fault instead of the machine quietly going without it.
bool hasEntry(const fs::path& dir, const char* name) {
  std::error_code error;
  return fs::symlink_status(dir / name, error).type() != fs::file_type::not_found && !error;
}

// Kinds of machine directory, in the order they are tried: a Wine prefix has a drive_c/ too.
struct MachineKind {
  bool (*recognises)(const fs::path& dir);
  std::shared_ptr<Machine> (*load)(const fs::path& dir, std::optional<std::int64_t> now);
};

bool isDescribed(const fs::path& dir) {
  return hasEntry(dir, "machine.json") || hasEntry(dir, "registry") || hasEntry(dir, "drive_c");
}

std::shared_ptr<Machine> loadDescribed(const fs::path& dir, std::optional<std::int64_t> now) {
  fs::path file = dir / "machine.json";
  nlohmann::json description =
      hasEntry(dir, "machine.json") ? readMachineFile(file.string()) : nlohmann::json::object();
  if (now) description["now"] = formatUtcTime(*now);
  std::shared_ptr<Registry> registry;
  HiveReading hives;
  if (hasEntry(dir, "hives")) {
    // A value both in registry/*.reg and in a hive is the hive's: the hives are mounted last.
    const nlohmann::json& codePage = description.value("ansiCodePage", nlohmann::json(1252u));
    registry = readRegistryFiles(dir.string(),
                                 codePage.is_number_unsigned() ? codePage.get<unsigned>() : 1252u);
    hives = mountHiveDirectory(*registry, dir / "hives");
  }
  return Machine::fromDescription(description, dir.string(), registry, std::move(hives.warnings));
}

const MachineKind kKinds[] = {
    {isWinePrefix, loadWinePrefix},
    {isOfflineVolume, loadOfflineVolume},
    {isDescribed, loadDescribed},
};

// "PSAPI.DLL!EnumPageFilesA" -> ("psapi.dll", "EnumPageFilesA"); "psapi" -> ("psapi.dll", "").
std::optional<std::pair<std::string, std::string>> missingEntry(const std::string& text) {
  std::size_t bang = text.find('!');
  std::string dll = text.substr(0, bang);
  std::string function = bang == std::string::npos ? "" : text.substr(bang + 1);
  if (dll.empty() || (bang != std::string::npos && function.empty())) return std::nullopt;
  return std::make_pair(canonicalDllName(dll), function);
}

TransitionRule transitionRule(const nlohmann::json& date) {
  TransitionRule rule;
  std::pair<const char*, std::uint16_t*> fields[] = {
      {"year", &rule.year},           {"month", &rule.month},
      {"dayOfWeek", &rule.dayOfWeek}, {"day", &rule.day},
      {"hour", &rule.hour},           {"minute", &rule.minute},
      {"second", &rule.second},       {"milliseconds", &rule.milliseconds},
  };
  for (auto [name, field] : fields) *field = date.value(name, std::uint16_t{0});
  return rule;
}

// A day-of-week rule (year 0) counts weeks 1-5; an absolute date needs a day of the month.
void checkTransition(const TransitionRule& rule, const std::string& path, const std::string& file) {
  if (rule.month == 0) return;
  if (rule.year == 0 && (rule.day < 1 || rule.day > 5))
    throwMemberError(file, path + ".day",
                     "expected the week of the month, 1 to 5 (5 = last), when year is 0");
  if (rule.year != 0 && rule.day < 1)
    throwMemberError(file, path + ".day", "expected a day of the month");
}

// The member `name` of `object`, or `absent` when there is none.
const nlohmann::json& memberOr(const nlohmann::json& object, const char* name,
                               const nlohmann::json& absent) {
  auto found = object.find(name);
  return found == object.end() ? absent : *found;
}

const nlohmann::json kNoObject = nlohmann::json::object();
const nlohmann::json kNoArray = nlohmann::json::array();

std::string upperDirectoryName(const std::string& directory) {
  std::error_code error;
  fs::path path = fs::weakly_canonical(fs::absolute(directory, error), error);
  return asciiUpper(path.filename().string());
}

}  // namespace

std::shared_ptr<Machine> Machine::load(const std::string& dir, const MachineChoice& choice) {
  std::error_code error;
  if (fs::is_regular_file(dir, error)) return loadDiskImage(dir, choice);
  if (choice.partition)
    throw MachineError(dir + ": a partition is picked in a disk image, and this is none");
  if (!choice.user.empty()) {
    if (!isOfflineVolume(dir))
      throw MachineError(dir + ": a profile is picked on an offline volume");
    return loadOfflineVolumeAs(dir, choice.user, choice.now);
  }
  if (!fs::exists(dir, error)) throw MachineError(dir + ": no such directory");
  if (!fs::is_directory(dir, error)) throw MachineError(dir + ": not a directory");
  for (const MachineKind& kind : kKinds)
    if (kind.recognises(dir)) return kind.load(dir, choice.now);
  throw MachineError(dir +
                     ": not a machine directory (no machine.json, registry/, drive_c/, "
                     "system.reg with user.reg, or Windows/System32/config/SOFTWARE)");
}

std::shared_ptr<Machine> Machine::fromDescription(const nlohmann::json& description,
                                                  const std::string& directory,
                                                  std::shared_ptr<const Registry> registry,
                                                  std::vector<std::string> warnings,
                                                  std::shared_ptr<const MachineFiles> files) {
  std::shared_ptr<Machine> machine(new Machine);
  machine->directory_ = directory;
  machine->files_ =
      files ? std::move(files) : std::make_shared<FolderFiles>(FolderFiles::drives(directory));
  machine->warnings_ = std::move(warnings);
  machine->read(description, directory.empty() ? "machine.json"
                                               : (fs::path(directory) / "machine.json").string());
  if (registry)
    machine->registry_ = std::move(registry);
  else
    machine->registry_ = directory.empty() ? std::make_shared<Registry>()
                                           : readRegistryFiles(directory, machine->ansiCodePage_);
  return machine;
}

void Machine::read(const nlohmann::json& description, const std::string& file) {
  checkMachineDescription(description, file);
  description_ = description;
  computerName_ = description.value(
      "computerName", directory_.empty() ? kNoDirectoryName : upperDirectoryName(directory_));
  ansiCodePage_ = description.value("ansiCodePage", 1252u);
  if (!charsetOf(ansiCodePage_))
    throwMemberError(file, "ansiCodePage",
                     "code page " + std::to_string(ansiCodePage_) + " is not known to iconv");
  if (description.contains("now"))
    fixedNow_ = MachineTime(
        std::chrono::milliseconds(*parseUtcTime(description["now"].get<std::string>())));
  readEnvironment();
  const nlohmann::json& system = memberOr(description, "system", kNoObject);
  const EnvironmentBlock::Variable* systemRoot = environment_.find("SystemRoot");
  windowsDirectory_ =
      system.value("windowsDirectory", systemRoot ? systemRoot->value : "C:\\Windows");
  systemDirectory_ = system.value("systemDirectory", windowsDirectory_ + "\\system32");
  wow64_ = system.value("wow64", false);
  readTimeZone(file);
  for (const auto& [name, output] : memberOr(description, "commands", kNoObject).items())
    commands_[name] = output.get<std::string>();
  readFaults(file);
}

void Machine::readEnvironment() {
  environment_ = EnvironmentBlock(ansiCodePage_);
  for (const auto& [name, value] : memberOr(description_, "environment", kNoObject).items())
    environment_.set(name, value.get<std::string>());
  for (char** variable = environ; variable && *variable; ++variable) {
    std::string_view text(*variable);
    std::size_t equals = text.find('=');
    if (equals != std::string_view::npos && equals > kOverlayPrefix.size() &&
        text.substr(0, kOverlayPrefix.size()) == kOverlayPrefix)
      environment_.set(std::string(text.substr(0, equals)), std::string(text.substr(equals + 1)));
  }
}

void Machine::readTimeZone(const std::string& file) {
  if (!description_.contains("timeZone")) return;
  const nlohmann::json& zone = description_["timeZone"];
  TimeZone timeZone;
  timeZone.bias = zone.value("bias", 0);
  timeZone.standardName = zone.value("standardName", "");
  timeZone.standardBias = zone.value("standardBias", 0);
  timeZone.daylightName = zone.value("daylightName", "");
  timeZone.daylightBias = zone.value("daylightBias", 0);
  timeZone.standardDate = transitionRule(memberOr(zone, "standardDate", kNoObject));
  timeZone.daylightDate = transitionRule(memberOr(zone, "daylightDate", kNoObject));
  checkTransition(timeZone.standardDate, "timeZone.standardDate", file);
  checkTransition(timeZone.daylightDate, "timeZone.daylightDate", file);
  if (timeZone.daylightDate.month != 0 && timeZone.standardDate.month == 0)
    throwMemberError(file, "timeZone.standardDate",
                     "a daylight rule needs the date standard time returns");
  timeZone_ = timeZone;
}

void Machine::readFaults(const std::string& file) {
  const nlohmann::json& missing = memberOr(description_, "missing", kNoArray);
  for (std::size_t i = 0; i < missing.size(); ++i) {
    auto entry = missingEntry(missing[i].get<std::string>());
    if (!entry)
      throwMemberError(file, "missing[" + std::to_string(i) + "]",
                       "expected \"dll\" or \"dll!Function\"");
    missing_.insert(*entry);
  }
  for (const auto& [function, value] : memberOr(description_, "fail", kNoObject).items()) {
    InjectedFailure failure;
    if (!value.is_object()) {
      failure.value = failureNumber(value);
    } else {
      failure.value = value.contains("return") ? failureNumber(value["return"]) : 0;
      if (value.contains("lastError")) failure.lastError = value["lastError"].get<std::uint32_t>();
    }
    failures_[function] = failure;
  }
}

MachineTime Machine::now() const {
  return fixedNow_ ? *fixedNow_
                   : std::chrono::time_point_cast<std::chrono::milliseconds>(
                         std::chrono::system_clock::now());
}

std::string Machine::command(const std::string& name) const {
  auto found = commands_.find(name);
  return found == commands_.end() ? "" : found->second;
}

bool Machine::isMissing(const std::string& dll, const std::string& function) const {
  // Asked on every lookup of a function: a machine that misses nothing answers at once.
  return !missing_.empty() && missing_.count({canonicalDllName(dll), function}) != 0;
}

const InjectedFailure* Machine::injectedFailure(const char* function) const {
  // Asked on every call of every function: a machine without failures answers at once.
  if (failures_.empty()) return nullptr;
  auto found = failures_.find(function);
  return found == failures_.end() ? nullptr : &found->second;
}

namespace {

std::mutex currentMutex;
std::shared_ptr<Machine> current;
// The machine `current` holds, read without the lock by every Win32 call: a reference handed out
// was never safe across a change of machine anyway.
std::atomic<Machine*> currentFast{nullptr};

}  // namespace

void setCurrentMachine(std::shared_ptr<Machine> machine) {
  std::lock_guard<std::mutex> lock(currentMutex);
  current = std::move(machine);
  currentFast.store(current.get(), std::memory_order_release);
}

Machine& currentMachine() {
  if (Machine* machine = currentFast.load(std::memory_order_acquire)) return *machine;
  std::lock_guard<std::mutex> lock(currentMutex);
  if (!current) current = Machine::fromDescription(nlohmann::json::object());
  currentFast.store(current.get(), std::memory_order_release);
  return *current;
}

}  // namespace winapi
