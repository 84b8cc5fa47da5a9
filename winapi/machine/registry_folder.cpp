#include "winapi/machine/registry_folder.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "winapi/formats/reg_file.h"
#include "winapi/machine/machine_file.h"
#include "winapi/support/errors.h"
#include "winapi/support/text.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

// An export of a large machine's HKEY_LOCAL_MACHINE, two bytes a character, fits (100 000
// applications: 80 MiB), below what would exhaust memory.
constexpr std::uintmax_t kMaxFileMiB = 256;

std::vector<fs::path> regFiles(const fs::path& folder) {
  std::error_code error;
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (equalsIgnoringCase(entry->path().extension().string(), ".reg") &&
        entry->is_regular_file(error))
      files.push_back(entry->path());
  }
  if (error) throw MachineError(folder.string() + ": cannot read: " + error.message());
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) {
    return a.filename().string() < b.filename().string();
  });
  return files;
}

}  // namespace

std::shared_ptr<Registry> readRegistryFiles(const std::string& directory, unsigned ansiCodePage) {
  auto registry = std::make_shared<Registry>();
  fs::path folder = fs::path(directory) / "registry";
  std::error_code error;
  // A folder that cannot even be examined (a symlink loop, no search permission) is no absent one.
  if (!fs::exists(folder, error)) {
    if (error) throw MachineError(folder.string() + ": cannot read: " + error.message());
    return registry;
  }
  if (!fs::is_directory(folder, error)) throw MachineError(folder.string() + ": not a directory");
  for (const fs::path& file : regFiles(folder))
    mergeRegFile(*registry, readMachineBytes(file.string(), kMaxFileMiB), file.string(),
                 ansiCodePage);
  return registry;
}

}  // namespace winapi
