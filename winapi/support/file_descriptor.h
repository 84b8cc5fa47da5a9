// An open file descriptor that is closed when its owner goes.
#ifndef VRX_WINAPI_FILE_DESCRIPTOR_H
#define VRX_WINAPI_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace winapi {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (fd_ >= 0) close(fd_);
  }

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// The file's first `limit` bytes (all of them when it is shorter), read from offset 0; nullopt
// when it cannot be read, errno telling why.
std::optional<std::string> readFileBytes(int fd, std::size_t limit = SIZE_MAX);

// Writes all of `bytes` at the file's position; false, errno telling why, when it cannot.
bool writeFileBytes(int fd, std::string_view bytes);

}  // namespace winapi

#endif
