// Raw disks: one file, or segments named .001, .002 … that follow on from each other.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "winapi/image/containers.h"
#include "winapi/support/errors.h"
#include "winapi/support/file_descriptor.h"

namespace winapi {

namespace {

struct Segment {
  FileDescriptor file;
  std::uint64_t start = 0;  // where it begins on the disk
  std::uint64_t size = 0;
};

class RawImage final : public ImageBytes {
 public:
  explicit RawImage(std::vector<Segment> segments) : segments_(std::move(segments)) {}

  std::uint64_t size() const override { return segments_.back().start + segments_.back().size; }

  std::int64_t read(std::uint64_t offset, char* buffer, std::size_t length) override {
    std::size_t done = 0;
    for (const Segment& segment : segments_) {
      const std::uint64_t at = offset + done;
      if (done == length) break;
      if (at < segment.start || at >= segment.start + segment.size) continue;
      const std::size_t part = static_cast<std::size_t>(
          std::min<std::uint64_t>(length - done, segment.start + segment.size - at));
      const ssize_t count =
          pread(segment.file.get(), buffer + done, part, static_cast<off_t>(at - segment.start));
      if (count < 0) return -1;
      done += static_cast<std::size_t>(count);
      if (static_cast<std::size_t>(count) < part) break;
    }
    return static_cast<std::int64_t>(done);
  }

  std::string format() const override { return segments_.size() > 1 ? "split raw" : "raw"; }

 private:
  std::vector<Segment> segments_;
};

Segment openSegment(const std::string& path, std::uint64_t start) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!file.valid() || fstat(file.get(), &status) != 0)
    throw MachineError(path + ": cannot be opened (" + std::strerror(errno) + ")");
  if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode))
    throw MachineError(path + ": is not a file");
  return {std::move(file), start, static_cast<std::uint64_t>(status.st_size)};
}

// "disk.001" → "disk.", the stem the following segments share; "" when not a first segment.
std::string segmentStem(const std::string& path) {
  const std::string first = ".001";
  if (path.size() <= first.size() ||
      path.compare(path.size() - first.size(), first.size(), first) != 0)
    return "";
  return path.substr(0, path.size() - 3);
}

}  // namespace

std::unique_ptr<ImageBytes> openRawImage(const std::string& path) {
  std::vector<Segment> segments;
  segments.push_back(openSegment(path, 0));
  const std::string stem = segmentStem(path);
  for (unsigned number = 2; !stem.empty() && number <= 999; ++number) {
    char suffix[8];
    std::snprintf(suffix, sizeof suffix, "%03u", number);
    struct stat status {};
    if (stat((stem + suffix).c_str(), &status) != 0) break;
    segments.push_back(openSegment(stem + suffix, segments.back().start + segments.back().size));
  }
  return std::make_unique<RawImage>(std::move(segments));
}

}  // namespace winapi
