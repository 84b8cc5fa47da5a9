#include "winapi/machine/image_machine.h"

#include <cstdio>
#include <optional>
#include <vector>

#include "winapi/image/disk_image.h"
#include "winapi/image/image_files.h"
#include "winapi/image/mounted_devices.h"
#include "winapi/machine/hive_file.h"
#include "winapi/machine/offline_volume.h"
#include "winapi/machine/registry_values.h"
#include "winapi/support/errors.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

const char kSoftwareHive[] = "C:\\Windows\\System32\\config\\SOFTWARE";
const RegistryPath kMountedDevices{L"SYSTEM", L"MountedDevices"};
const RegistryPath kCurrentVersion{L"SOFTWARE", L"Microsoft", L"Windows NT", L"CurrentVersion"};

bool readable(const Partition& partition) {
  return partition.fileSystem == FileSystemKind::Ntfs ||
         partition.fileSystem == FileSystemKind::Fat;
}

std::shared_ptr<ImageFiles> partitionFiles(const std::shared_ptr<const DiskImage>& image,
                                           unsigned number) {
  return std::make_shared<ImageFiles>(image, std::map<char, unsigned>{{'c', number}});
}

bool holdsWindows(const std::shared_ptr<const DiskImage>& image, const Partition& partition) {
  return partition.fileSystem == FileSystemKind::Ntfs &&
         partitionFiles(image, partition.number)->find(kSoftwareHive).has_value();
}

// "60.0 GiB", "512 MiB".
std::string sizeText(std::uint64_t bytes) {
  char text[32];
  if (bytes >= (std::uint64_t{1} << 30))
    std::snprintf(text, sizeof text, "%.1f GiB", static_cast<double>(bytes) / (1 << 30));
  else
    std::snprintf(text, sizeof text, "%llu MiB", static_cast<unsigned long long>(bytes >> 20));
  return text;
}

// "partition 2 (60.0 GiB, Windows 10 Pro)", the product as the partition's SOFTWARE names it.
std::string windowsText(const std::shared_ptr<const DiskImage>& image, const Partition& partition) {
  auto files = partitionFiles(image, partition.number);
  Registry registry;
  std::string product = "its SOFTWARE hive unreadable";
  try {
    mountNamedHive(registry, {*files, kSoftwareHive});
    product = textAt(registry.root(Hive::LocalMachine), kCurrentVersion, L"ProductName")
                  .value_or("no ProductName");
  } catch (const MachineError&) {
  }
  return describePartition(partition) + " (" + sizeText(partition.size) + ", " + product + ")";
}

// "1 FAT32 100 MiB, 2 NTFS 60.0 GiB": what the image holds, for the line saying it has no Windows.
std::string contentsText(const DiskImage& image) {
  std::string text;
  for (const Partition& partition : image.partitions())
    text +=
        (text.empty() ? "" : ", ") + describePartition(partition) + " " +
        (partition.fileSystemName.empty() ? "without a file system" : partition.fileSystemName) +
        " " + sizeText(partition.size);
  return text.empty() ? "no partitions" : text;
}

const Partition& windowsPartition(const std::shared_ptr<const DiskImage>& image,
                                  const MachineChoice& choice) {
  if (choice.partition) {
    const Partition* chosen = image->partition(*choice.partition);
    if (!chosen)
      throw MachineError(image->path() + ": no partition " + std::to_string(*choice.partition) +
                         " (" + contentsText(*image) + ")");
    if (!holdsWindows(image, *chosen))
      throw MachineError(image->path() + ": " + describePartition(*chosen) +
                         " holds no Windows (no Windows\\System32\\config\\SOFTWARE)");
    return *chosen;
  }
  std::vector<const Partition*> found;
  std::optional<std::string> unreadable;  // why the first volume that may hold Windows cannot
  for (const Partition& partition : image->partitions()) {
    try {
      if (holdsWindows(image, partition)) found.push_back(&partition);
      if (partition.fileSystem == FileSystemKind::BitLocker) image->files(partition.number);
    } catch (const MachineError& error) {
      if (!unreadable) unreadable = error.what();
    }
  }
  if (found.size() == 1) return *found.front();
  if (found.empty())
    throw MachineError(
        unreadable.value_or(image->path() + ": no Windows on it (" + contentsText(*image) + ")"));
  std::string list;
  for (const Partition* partition : found)
    list += (list.empty() ? "" : ", ") + windowsText(image, *partition);
  throw MachineError(image->path() + ": " + std::to_string(found.size()) +
                     " Windows installations: " + list + "; choose one with --partition");
}

// The drives as the machine's MountedDevices letters them, Windows' own partition as C:.
std::shared_ptr<const MachineFiles> letteredDrives(const std::shared_ptr<const DiskImage>& image,
                                                   unsigned windows, const Registry& registry) {
  std::vector<MountedDevice> values;
  if (const RegistryKey* key = registry.root(Hive::LocalMachine).find(kMountedDevices))
    for (const RegistryValue& value : key->values())
      values.emplace_back(wideToUtf8(value.name.text()), value.data);
  std::map<char, unsigned> letters{{'c', windows}};
  for (const auto& [letter, number] : driveLetters(values, image->partitions()))
    if (letter != 'c' && number != windows && readable(*image->partition(number)))
      letters.emplace(letter, number);
  return std::make_shared<ImageFiles>(image, letters);
}

}  // namespace

std::shared_ptr<Machine> loadDiskImage(const std::string& path, const MachineChoice& choice) {
  std::shared_ptr<const DiskImage> image = DiskImage::open(path);
  const unsigned windows = windowsPartition(image, choice).number;
  VolumeSource source;
  source.name = path;
  source.windows = partitionFiles(image, windows);
  source.system = systemPartitionFiles(image);
  source.lettered = [image, windows](const Registry& registry) {
    return letteredDrives(image, windows, registry);
  };
  return loadWindowsVolume(source, choice.user, choice.now);
}

}  // namespace winapi
