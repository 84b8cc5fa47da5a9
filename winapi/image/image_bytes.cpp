#include "winapi/image/image_bytes.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "winapi/image/containers.h"
#include "winapi/support/errors.h"

namespace winapi {

namespace {

// A container whose segment or extent files are not all there opens, and fails only where the
// missing part begins: reading the disk's last sector finds that before anything else is read.
void checkEndReadable(ImageBytes& bytes, const std::string& path) {
  const std::uint64_t size = bytes.size();
  char sector[512];
  const std::size_t length = static_cast<std::size_t>(std::min<std::uint64_t>(size, sizeof sector));
  if (bytes.read(size - length, sector, length) != static_cast<std::int64_t>(length))
    throw MachineError(path + ": its " + bytes.format() + " disk cannot be read to its end (" +
                       std::to_string(size) + " bytes); a segment or extent file is missing or " +
                       "damaged");
}

}  // namespace

std::unique_ptr<ImageBytes> openImageBytes(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0)
    throw MachineError(path + ": cannot be opened (" + std::strerror(errno) + ")");
  std::unique_ptr<ImageBytes> bytes;
  for (const Container* container : {&ewfContainer, &vhdiContainer, &vmdkContainer, &qcowContainer})
    if (!bytes && container->recognises(path)) bytes = container->open(path);
  if (!bytes) bytes = openRawImage(path);
  checkEndReadable(*bytes, path);
  return bytes;
}

}  // namespace winapi
