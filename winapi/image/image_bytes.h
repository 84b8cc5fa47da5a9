// The bytes of the disk an image file holds, whatever container keeps them (raw, split raw, VHD,
// VHDX, VMDK, QCOW2, EWF): the one thing the partition and file system readers read from.
#ifndef VRX_WINAPI_IMAGE_BYTES_H
#define VRX_WINAPI_IMAGE_BYTES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace winapi {

class ImageBytes {
 public:
  virtual ~ImageBytes() = default;
  // The size of the disk in bytes.
  virtual std::uint64_t size() const = 0;
  // Reads up to `length` bytes of the disk at `offset`; the number read, fewer at the end of the
  // disk, -1 when the container cannot be read there.
  virtual std::int64_t read(std::uint64_t offset, char* buffer, std::size_t length) = 0;
  // The container's name in messages: "raw", "VHDX" …
  virtual std::string format() const = 0;
  // Whether reading costs more than the disk's bytes (EWF decompresses), so progress is shown.
  virtual bool slow() const { return false; }
};

// The disk inside the image file at `path`, its container told by content (a file of no known
// container is read as raw). Opened read-only. Throws MachineError naming the file.
std::unique_ptr<ImageBytes> openImageBytes(const std::string& path);

}  // namespace winapi

#endif
