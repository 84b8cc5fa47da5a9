// EWF disks (.E01 and the segments .E02 … beside it), through libewf, which finds the segments.
#include <libewf.h>

#include "winapi/image/containers.h"
#include "winapi/image/libyal_image.h"

namespace winapi {

namespace {

struct Ewf {
  using Handle = libewf_handle_t;
  using Error = libewf_error_t;
  static constexpr const char* name = "EWF";
  static constexpr auto initialize = libewf_handle_initialize;
  static constexpr auto release = libewf_handle_free;
  static constexpr auto close = libewf_handle_close;
  static constexpr auto mediaSize = libewf_handle_get_media_size;
  static constexpr auto read = libewf_handle_read_random;
  static constexpr auto sprint = libewf_error_sprint;
  static constexpr auto errorFree = libewf_error_free;

  static int open(Handle* handle, const std::string& path, Error** error) {
    char** segments = nullptr;
    int count = 0;
    if (libewf_glob(path.c_str(), path.size(), LIBEWF_FORMAT_UNKNOWN, &segments, &count, error) !=
        1)
      return -1;
    const int result = libewf_handle_open(handle, segments, count, LIBEWF_OPEN_READ, error);
    libewf_glob_free(segments, count, nullptr);
    return result == 1 ? 1 : -1;
  }
  static std::string format(Handle*) { return name; }
};

bool recognises(const std::string& path) {
  return libewf_check_file_signature(path.c_str(), nullptr) == 1;
}

}  // namespace

const Container ewfContainer{recognises, LibyalImage<Ewf>::open};

}  // namespace winapi
