#include "winapi/image/tsk_image.h"

#include "winapi/image/slow_reads.h"

namespace winapi {

namespace {

// What TSK is given: its image header first, as its external interface requires. TSK keeps its
// read cache in the header (about 2 MB), so this lives on the heap; TSK's close deletes it.
struct External {
  TSK_IMG_INFO info{};
  ImageBytes* bytes = nullptr;
  std::atomic<std::uint64_t>* bytesRead = nullptr;
  bool slow = false;
};

// TSK holds its image lock around this, so it is never called twice at once.
ssize_t readExternal(TSK_IMG_INFO* info, TSK_OFF_T offset, char* buffer, size_t length) {
  auto* external = reinterpret_cast<External*>(info);
  const std::int64_t count =
      external->bytes->read(static_cast<std::uint64_t>(offset), buffer, length);
  if (count > 0) *external->bytesRead += static_cast<std::uint64_t>(count);
  if (external->slow) reportSlowRead(*external->bytesRead, external->bytes->size());
  return count;
}

void closeExternal(TSK_IMG_INFO* info) { delete reinterpret_cast<External*>(info); }

void describeExternal(TSK_IMG_INFO*, FILE*) {}

}  // namespace

TskImage::TskImage(std::unique_ptr<ImageBytes> bytes) : bytes_(std::move(bytes)) {
  auto external = std::make_unique<External>();
  external->bytes = bytes_.get();
  external->bytesRead = &bytesRead_;
  external->slow = bytes_->slow();
  image_ = tsk_img_open_external(external.get(), static_cast<TSK_OFF_T>(bytes_->size()), 512,
                                 readExternal, closeExternal, describeExternal);
  if (image_) external.release();
}

TskImage::~TskImage() {
  if (image_) tsk_img_close(image_);
}

std::string TskImage::read(std::uint64_t offset, std::size_t length) const {
  std::string bytes(length, '\0');
  const ssize_t count = tsk_img_read(image_, static_cast<TSK_OFF_T>(offset), bytes.data(), length);
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

}  // namespace winapi
