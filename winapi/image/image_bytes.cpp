#include "winapi/image/image_bytes.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "winapi/image/containers.h"
#include "winapi/support/errors.h"

namespace winapi {

std::unique_ptr<ImageBytes> openImageBytes(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0)
    throw MachineError(path + ": cannot be opened (" + std::strerror(errno) + ")");
  for (const Container* container : {&ewfContainer, &vhdiContainer, &vmdkContainer, &qcowContainer})
    if (container->recognises(path)) return container->open(path);
  return openRawImage(path);
}

}  // namespace winapi
