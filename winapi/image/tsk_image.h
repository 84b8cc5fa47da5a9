// The disk as The Sleuth Kit reads it: the container's bytes behind TSK's external image
// interface, every byte read counted.
#ifndef VRX_WINAPI_IMAGE_TSK_IMAGE_H
#define VRX_WINAPI_IMAGE_TSK_IMAGE_H

#include <tsk/libtsk.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "winapi/image/image_bytes.h"

namespace winapi {

class TskImage {
 public:
  explicit TskImage(std::unique_ptr<ImageBytes> bytes);
  ~TskImage();
  TskImage(const TskImage&) = delete;
  TskImage& operator=(const TskImage&) = delete;

  TSK_IMG_INFO* get() const { return image_; }
  const ImageBytes& bytes() const { return *bytes_; }
  std::uint64_t bytesRead() const { return bytesRead_; }
  // The `length` bytes at `offset`, through TSK's cache; shorter where the disk ends.
  std::string read(std::uint64_t offset, std::size_t length) const;

 private:
  std::unique_ptr<ImageBytes> bytes_;
  std::atomic<std::uint64_t> bytesRead_{0};
  TSK_IMG_INFO* image_ = nullptr;
};

}  // namespace winapi

#endif
