// EWF disks (.E01 and the segments .E02 … beside it), through libewf, which finds the segments.
#include <libewf.h>

#include "winapi/image/containers.h"
#include "winapi/image/libyal_image.h"

namespace winapi {

namespace {

// "disk.E01, disk.E02": the names of the segments found, without their folder.
std::string segmentNames(char** segments, int count) {
  std::string names;
  for (int i = 0; i < count; ++i) {
    const std::string segment = segments[i];
    names += (i ? ", " : "") + segment.substr(segment.rfind('/') + 1);
  }
  return names;
}

struct Ewf {
  using Handle = libewf_handle_t;
  using Error = libewf_error_t;
  static constexpr const char* name = "EWF";
  static constexpr bool slow = true;
  static constexpr auto initialize = libewf_handle_initialize;
  static constexpr auto release = libewf_handle_free;
  static constexpr auto close = libewf_handle_close;
  static constexpr auto mediaSize = libewf_handle_get_media_size;
  static constexpr auto read = libewf_handle_read_random;
  static constexpr auto sprint = libewf_error_sprint;
  static constexpr auto errorFree = libewf_error_free;

  static int open(Handle* handle, const std::string& path, Error** error, std::string& refusal) {
    char** segments = nullptr;
    int count = 0;
    if (libewf_glob(path.c_str(), path.size(), LIBEWF_FORMAT_UNKNOWN, &segments, &count, error) !=
        1)
      return -1;
    const int result = libewf_handle_open(handle, segments, count, LIBEWF_OPEN_READ, error);
    const std::string found = segmentNames(segments, count);
    libewf_glob_free(segments, count, nullptr);
    if (result != 1) return -1;
    // The segments after a missing one are not found; libewf opens those before it and marks them.
    const int corrupted = libewf_handle_segment_files_corrupted(handle, error);
    if (corrupted != 1) return corrupted == 0 ? 1 : -1;
    libewf_handle_close(handle, nullptr);
    refusal =
        "its segment files are incomplete or damaged (found " + found + "); is a segment missing?";
    return 0;
  }
  static std::string format(Handle*) { return name; }
};

bool recognises(const std::string& path) {
  return libewf_check_file_signature(path.c_str(), nullptr) == 1;
}

}  // namespace

const Container ewfContainer{recognises, LibyalImage<Ewf>::open};

}  // namespace winapi
