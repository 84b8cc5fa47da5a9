// A disk read through one of the libyal container libraries, which all share one shape: a handle
// initialised, opened read-only, asked its media size and read at offsets. `Library` names the
// library's functions (see vhdi_image.cpp and its siblings); its open returns 1 when opened, -1 on
// the library's error, 0 for a disk that cannot be read as it is, left closed (the reason in its
// last argument).
#ifndef VRX_WINAPI_IMAGE_LIBYAL_IMAGE_H
#define VRX_WINAPI_IMAGE_LIBYAL_IMAGE_H

#include <cstdint>
#include <memory>
#include <string>

#include "winapi/image/image_bytes.h"
#include "winapi/image/libyal_error.h"
#include "winapi/support/errors.h"

namespace winapi {

template <typename Library>
class LibyalImage final : public ImageBytes {
 public:
  using Handle = typename Library::Handle;
  using Error = typename Library::Error;

  static std::unique_ptr<ImageBytes> open(const std::string& path) {
    Error* error = nullptr;
    Handle* handle = nullptr;
    if (Library::initialize(&handle, &error) != 1) throw failure(path, error);
    std::unique_ptr<LibyalImage> image(new LibyalImage(handle));
    std::string refusal;
    const int opened = Library::open(handle, path, &error, refusal);
    if (opened == 0) throw MachineError(path + ": " + refusal);
    if (opened != 1) throw failure(path, error);
    image->opened_ = true;
    std::uint64_t size = 0;
    if (Library::mediaSize(handle, &size, &error) != 1) throw failure(path, error);
    image->size_ = size;
    image->format_ = Library::format(handle);
    return image;
  }

  ~LibyalImage() override {
    if (opened_) Library::close(handle_, nullptr);
    Library::release(&handle_, nullptr);
  }

  std::uint64_t size() const override { return size_; }

  std::int64_t read(std::uint64_t offset, char* buffer, std::size_t length) override {
    Error* error = nullptr;
    const auto count = Library::read(handle_, buffer, length, static_cast<off64_t>(offset), &error);
    if (count < 0) Library::errorFree(&error);
    return count;
  }

  std::string format() const override { return format_; }
  bool slow() const override { return Library::slow; }

 private:
  explicit LibyalImage(Handle* handle) : handle_(handle) {}

  static MachineError failure(const std::string& path, Error*& error) {
    return MachineError(path + ": cannot be read as a " + Library::name + " image (" +
                        takeLibyalMessage(error, Library::sprint, Library::errorFree) + ")");
  }

  Handle* handle_;
  bool opened_ = false;
  std::uint64_t size_ = 0;
  std::string format_;
};

}  // namespace winapi

#endif
