#include "winapi/support/file_descriptor.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace winapi {

std::optional<std::string> readFileBytes(int fd, std::size_t limit) {
  struct stat status;
  if (fd < 0 || fstat(fd, &status) != 0) return std::nullopt;
  std::string bytes(std::min(static_cast<std::size_t>(status.st_size), limit), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t read = pread(fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (read < 0 && errno == EINTR) continue;
    if (read <= 0)
      return read == 0 ? std::optional<std::string>(bytes.substr(0, done)) : std::nullopt;
    done += static_cast<std::size_t>(read);
  }
  return bytes;
}

bool writeFileBytes(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace winapi
