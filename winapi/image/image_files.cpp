#include "winapi/image/image_files.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "winapi/files/windows_path.h"
#include "winapi/support/errors.h"

namespace winapi {

ImageFiles::ImageFiles(std::shared_ptr<const DiskImage> image,
                       const std::map<char, unsigned>& letters)
    : image_(std::move(image)) {
  for (const auto& [letter, number] : letters) {
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    drives_[lower] = Drive{number, &image_->files(number)};
  }
}

const ImageFiles::Drive* ImageFiles::drive(char letter) const {
  const auto found = drives_.find(letter);
  return found == drives_.end() ? nullptr : &found->second;
}

std::optional<FileEntry> ImageFiles::find(const std::string& windowsPath) const {
  const std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  const Drive* on = path ? drive(path->drive) : nullptr;
  if (!on) return std::nullopt;
  return on->tree->find(path->components);
}

std::vector<FileEntry> ImageFiles::list(const std::string& windowsPath) const {
  const std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  const Drive* on = path ? drive(path->drive) : nullptr;
  if (!on) return {};
  return on->tree->list(path->components);
}

FileDescriptor ImageFiles::open(const std::string& windowsPath) const {
  const std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  const Drive* on = path ? drive(path->drive) : nullptr;
  if (!on) return FileDescriptor();
  return on->tree->open(path->components);
}

std::string ImageFiles::describe(const std::string& windowsPath) const {
  const std::optional<WindowsPath> path = parseWindowsPath(windowsPath);
  const Drive* on = path ? drive(path->drive) : nullptr;
  const std::string shown = path ? path->text() : windowsPath;
  if (!on) return image_->path() + ": " + shown;
  return image_->path() + ", " + describePartition(*image_->partition(on->partition)) + ": " +
         shown;
}

std::string ImageFiles::readingNote() const {
  char percent[32];
  std::snprintf(percent, sizeof percent, "%.2f",
                100.0 * static_cast<double>(image_->bytesRead()) /
                    static_cast<double>(std::max<std::uint64_t>(image_->size(), 1)));
  return "disk image: " + std::to_string(image_->bytesRead()) + " of " +
         std::to_string(image_->size()) + " bytes read (" + percent + " %)";
}

std::unique_ptr<ImageFiles> systemPartitionFiles(std::shared_ptr<const DiskImage> image) {
  for (const Partition& partition : image->partitions())
    if (partition.efiSystem)
      return std::make_unique<ImageFiles>(image, std::map<char, unsigned>{{'c', partition.number}});
  for (const Partition& partition : image->partitions()) {
    if (partition.fileSystem != FileSystemKind::Ntfs && partition.fileSystem != FileSystemKind::Fat)
      continue;
    try {
      const FileSystemTree& tree = image->files(partition.number);
      if (tree.find({"Boot", "BCD"}))
        return std::make_unique<ImageFiles>(image,
                                            std::map<char, unsigned>{{'c', partition.number}});
    } catch (const MachineError&) {
      // A partition whose files cannot be read holds no boot files that can.
    }
  }
  return nullptr;
}

}  // namespace winapi
