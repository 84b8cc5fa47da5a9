// Any bytes as a raw disk image open into partitions and files or give a MachineError, and nothing
// else: no crash, no other exception, no hang. The image is read from a file in memory, through
// its /proc/self/fd path, as a disk image file is. Seeds: fuzz/seeds/disk_image/.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "winapi/image/image_files.h"
#include "winapi/support/errors.h"
#include "winapi/support/file_descriptor.h"

namespace {

// Walks a folder's entries a few levels down and reads the files in it.
void walk(const winapi::ImageFiles& files, const std::string& folder, int depth) {
  for (const winapi::FileEntry& entry : files.list(folder)) {
    const std::string path = folder + "\\" + entry.name;
    if (entry.directory && depth > 0) walk(files, path, depth - 1);
    if (!entry.directory) files.open(path);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const winapi::FileDescriptor image(memfd_create("fuzz_disk_image", MFD_CLOEXEC));
  if (size > 0 && write(image.get(), data, size) != static_cast<ssize_t>(size)) return 0;
  std::shared_ptr<const winapi::DiskImage> disk;
  try {
    disk = winapi::DiskImage::open("/proc/self/fd/" + std::to_string(image.get()));
  } catch (const winapi::MachineError&) {
    return 0;
  }
  for (const winapi::Partition& partition : disk->partitions()) {
    try {
      walk(winapi::ImageFiles(disk, {{'c', partition.number}}), "C:", 3);
    } catch (const winapi::MachineError&) {
    }
  }
  return 0;
}
