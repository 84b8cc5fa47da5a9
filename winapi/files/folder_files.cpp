#include "winapi/files/folder_files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

#include "winapi/files/windows_path.h"
#include "winapi/support/text.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

// Seconds from 1601, where FILETIMEs start, to 1970.
constexpr std::uint64_t kEpochDifference = 11644473600ull;

std::optional<FileEntry> entryOf(const fs::path& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  FileEntry entry;
  entry.name = path.filename().string();
  entry.directory = S_ISDIR(status.st_mode);
  entry.size = entry.directory ? 0 : static_cast<std::uint64_t>(status.st_size);
  if (status.st_mtim.tv_sec >= 0)
    entry.lastWritten =
        (static_cast<std::uint64_t>(status.st_mtim.tv_sec) + kEpochDifference) * 10000000u +
        static_cast<std::uint64_t>(status.st_mtim.tv_nsec) / 100u;
  return entry;
}

}  // namespace

std::optional<fs::path> findEntry(const fs::path& directory, const std::string& name) {
  std::error_code error;
  if (fs::exists(directory / name, error)) return directory / name;
  for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error))
    if (equalsIgnoringCase(it->path().filename().string(), name)) return it->path();
  return std::nullopt;
}

FolderFiles::FolderFiles(fs::path directory, bool wholeVolume)
    : directory_(std::move(directory)), wholeVolume_(wholeVolume) {}

FolderFiles FolderFiles::drives(fs::path directory) { return {std::move(directory), false}; }

FolderFiles FolderFiles::volume(fs::path directory) { return {std::move(directory), true}; }

std::optional<fs::path> FolderFiles::driveFolder(char drive) const {
  if (directory_.empty()) return std::nullopt;
  if (wholeVolume_) return drive == 'c' ? std::optional<fs::path>(directory_) : std::nullopt;
  return findEntry(directory_, std::string("drive_") + drive);
}

std::optional<fs::path> FolderFiles::hostPath(const std::string& windowsPath) const {
  std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  std::optional<fs::path> host = path ? driveFolder(path->drive) : std::nullopt;
  for (std::size_t i = 0; host && i < path->components.size(); ++i)
    host = findEntry(*host, path->components[i]);
  return host;
}

std::optional<FileEntry> FolderFiles::find(const std::string& windowsPath) const {
  std::optional<fs::path> host = hostPath(windowsPath);
  return host ? entryOf(*host) : std::nullopt;
}

std::vector<FileEntry> FolderFiles::list(const std::string& windowsPath) const {
  std::vector<FileEntry> entries;
  std::optional<fs::path> host = hostPath(windowsPath);
  if (!host) return entries;
  std::error_code error;
  for (fs::directory_iterator it(*host, error), end; !error && it != end; it.increment(error))
    if (std::optional<FileEntry> entry = entryOf(it->path())) entries.push_back(*entry);
  return entries;
}

FileDescriptor FolderFiles::open(const std::string& windowsPath) const {
  std::optional<fs::path> host = hostPath(windowsPath);
  if (!host) {
    errno = ENOENT;
    return FileDescriptor();
  }
  FileDescriptor file(::open(host->c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status;
  if (file.valid() && fstat(file.get(), &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    return FileDescriptor();
  }
  return file;
}

std::string FolderFiles::describe(const std::string& windowsPath) const {
  if (std::optional<fs::path> host = hostPath(windowsPath)) return host->string();
  std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  std::optional<fs::path> drive = path ? driveFolder(path->drive) : std::nullopt;
  if (!drive) return windowsPath;
  for (const std::string& component : path->components) *drive /= component;
  return drive->string();
}

}  // namespace winapi
