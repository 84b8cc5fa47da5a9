// The Windows machine that the Win32 functions of this layer answer for. A machine is read
// from a directory (see "The machine directory" in the design) and then never changes; the
// API areas read it through currentMachine().
#ifndef VRX_WINAPI_MACHINE_H
#define VRX_WINAPI_MACHINE_H

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "winapi/files/machine_files.h"
#include "winapi/machine/environment_block.h"
#include "winapi/machine/machine_choice.h"
#include "winapi/support/errors.h"
#include "winapi/support/registry_store.h"
#include "winapi/support/text.h"

namespace winapi {

// A time zone transition in the SYSTEMTIME rule form: with year 0 it is the day-th (1-5, 5 =
// last) dayOfWeek of month at the given time, every year; month 0 means no transition.
struct TransitionRule {
  std::uint16_t year = 0, month = 0, dayOfWeek = 0, day = 0;
  std::uint16_t hour = 0, minute = 0, second = 0, milliseconds = 0;
};

// As TIME_ZONE_INFORMATION: biases in minutes, UTC = local time + bias. The daylight date is
// given in standard time and the standard date in daylight time, as Windows keeps them.
struct TimeZone {
  std::int32_t bias = 0;
  std::string standardName;
  TransitionRule standardDate;
  std::int32_t standardBias = 0;
  std::string daylightName;
  TransitionRule daylightDate;
  std::int32_t daylightBias = 0;
};

// A `fail` entry: the value the function returns instead of working, and the last error it
// leaves (when the entry gives one, or the function reports failures through GetLastError).
struct InjectedFailure {
  std::uint64_t value = 0;
  std::optional<std::uint32_t> lastError;
};

// Milliseconds since 1970-01-01 UTC: every SYSTEMTIME year (1601-30827) fits.
using MachineTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;

class Machine {
 public:
  // Reads the machine at `path`, a machine directory or a disk image; throws MachineError.
  static std::shared_ptr<Machine> load(const std::string& path, const MachineChoice& choice = {});
  // A machine given by the contents of a machine.json, checked as load() checks the file.
  // `directory` may name a directory holding registry/, drive_c/ …; the computer name defaults
  // to its name, or to "LOCALHOST" without one. A `registry` given is the machine's instead of
  // the directory's registry/*.reg. `warnings` are what its loader found to report; `files` are the
  // machine's files when they are not the directory's drive_c/, drive_d/ ….
  static std::shared_ptr<Machine> fromDescription(const nlohmann::json& description,
                                                  const std::string& directory = "",
                                                  std::shared_ptr<const Registry> registry = {},
                                                  std::vector<std::string> warnings = {},
                                                  std::shared_ptr<const MachineFiles> files = {});

  const std::string& directory() const { return directory_; }
  // machine.json as read (UTF-8 text), for the API areas that read their own members.
  const nlohmann::json& description() const { return description_; }
  // What loading found that the log should tell (a dirty hive read as it stands), a line each.
  const std::vector<std::string>& warnings() const { return warnings_; }

  // Text accessors answer in UTF-8; the A functions convert to ansiCodePage().
  const std::string& computerName() const { return computerName_; }
  unsigned ansiCodePage() const { return ansiCodePage_; }
  const EnvironmentBlock& environment() const { return environment_; }
  const std::string& windowsDirectory() const { return windowsDirectory_; }
  const std::string& systemDirectory() const { return systemDirectory_; }
  const std::optional<TimeZone>& timeZone() const { return timeZone_; }
  // system.wow64: the process is a 32-bit one on 64-bit Windows.
  bool wow64() const { return wow64_; }
  // registry/*.reg merged; shared, so that an open key keeps the registry it reads.
  const std::shared_ptr<const Registry>& registry() const { return registry_; }
  // `now` of machine.json when given, else the real clock.
  MachineTime now() const;

  // The machine's files: for a machine directory, drive X: is its drive_x/.
  const MachineFiles& files() const { return *files_; }
  // What the command prints (commands[name]), "" for a command not described.
  std::string command(const std::string& name) const;

  // Fault injection. `dll` in any spelling ("PSAPI", "psapi.dll"); an empty `function` asks
  // whether the whole DLL is missing. Function names are compared exactly, as GetProcAddress does.
  bool isMissing(const std::string& dll, const std::string& function = "") const;
  const InjectedFailure* injectedFailure(const char* function) const;

 private:
  Machine() = default;
  void read(const nlohmann::json& description, const std::string& file);
  void readFaults(const std::string& file);
  void readTimeZone(const std::string& file);
  void readEnvironment();

  std::string directory_;
  nlohmann::json description_;
  std::string computerName_;
  unsigned ansiCodePage_ = 1252;
  EnvironmentBlock environment_;
  std::string windowsDirectory_;
  std::string systemDirectory_;
  std::optional<TimeZone> timeZone_;
  bool wow64_ = false;
  std::shared_ptr<const Registry> registry_;
  std::shared_ptr<const MachineFiles> files_;
  std::vector<std::string> warnings_;
  std::optional<MachineTime> fixedNow_;
  std::map<std::string, std::string, LessIgnoringCase> commands_;
  std::set<std::pair<std::string, std::string>> missing_;
  std::map<std::string, InjectedFailure> failures_;
};

// The machine the Win32 functions answer for. Until one is set, an empty machine with the
// defaults, so that tests and a plug-in loaded without a host still work.
void setCurrentMachine(std::shared_ptr<Machine> machine);
Machine& currentMachine();

}  // namespace winapi

#endif
