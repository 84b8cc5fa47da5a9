#include <unistd.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "tools/vrxhost/platform.h"
#include "vrx_build.h"
#include "vrxcore/shipped_files.h"
#include "vrxcore/terminal_line.h"
#include "winapi/formats/reg_export.h"
#include "winapi/image/slow_reads.h"
#include "winapi/machine/machine.h"
#include "winapi/machine/offline_volume.h"
#include "winapi/support/calendar.h"

namespace vrxhost {

namespace {

// The sample machine an install ships, else the one the build put together.
std::string sampleMachine() {
  const std::string installed =
      NZARVEK20::ProgramDirectory() + "../" VRX_INSTALL_DATADIR "/examples/sample";
  std::error_code error;
  return std::filesystem::exists(installed, error) ? installed : VRX_SAMPLE_MACHINE;
}

// While a disk image that reads slowly (EWF) is read, how much of it has been, on a terminal.
class SlowReadingShown {
 public:
  explicit SlowReadingShown(const std::string& image) {
    winapi::setSlowReadProgress([this, image](std::uint64_t read, std::uint64_t) {
      if ((read >> 20) == shownMebibytes_) return;
      shownMebibytes_ = read >> 20;
      line_.Show("reading " + image + ": " + std::to_string(shownMebibytes_) + " MiB");
    });
  }
  ~SlowReadingShown() { winapi::setSlowReadProgress({}); }
  SlowReadingShown(const SlowReadingShown&) = delete;
  SlowReadingShown& operator=(const SlowReadingShown&) = delete;

 private:
  NZARVEK20::TTerminalLine line_;
  std::uint64_t shownMebibytes_ = ~std::uint64_t{0};
};

}  // namespace

std::string pluginFileName() { return "libinstalledapps.so"; }

bool replaceFile(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

void presentMachine(const Options& options) {
  const std::string dir = options.machine.empty() ? sampleMachine() : options.machine;
  std::error_code error;
  if (!options.user.empty() && !winapi::isOfflineVolume(dir) &&
      !std::filesystem::is_regular_file(dir, error))
    throw std::invalid_argument(
        "--user picks a profile of an offline Windows volume or disk "
        "image; " +
        dir + " is neither");
  std::optional<std::int64_t> now;
  if (!options.now.empty() && !(now = winapi::parseZonedTime(options.now)))
    throw std::invalid_argument("--now " + options.now +
                                ": expected an ISO 8601 time with its zone "
                                "(2026-11-22T10:15:30Z, 2026-11-22T11:15:30+01:00) or CIM "
                                "date-time text (20261122111530.000000+060)");
  const SlowReadingShown shown(dir);
  winapi::setCurrentMachine(winapi::Machine::load(
      dir, {options.user, now,
            options.partition ? std::optional<unsigned>(options.partition) : std::nullopt}));
}

std::vector<std::string> machineWarnings() { return winapi::currentMachine().warnings(); }

std::string machineReadingNote() { return winapi::currentMachine().files().readingNote(); }

std::function<void(std::ostream&)> registryExport(const Options& options) {
  winapi::RegistryKeyName key = winapi::parseRegistryKeyName(options.exportRegistry);
  presentMachine(options);
  std::shared_ptr<const winapi::Registry> registry = winapi::currentMachine().registry();
  return [registry, key](std::ostream& out) { winapi::exportRegistry(*registry, key, out); };
}

}  // namespace vrxhost
