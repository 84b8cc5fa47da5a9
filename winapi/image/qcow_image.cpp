// QCOW and QCOW2 disks, through libqcow.
#include <libqcow.h>

#include "winapi/image/containers.h"
#include "winapi/image/libyal_image.h"

namespace winapi {

namespace {

struct Qcow {
  using Handle = libqcow_file_t;
  using Error = libqcow_error_t;
  static constexpr const char* name = "QCOW";
  static constexpr bool slow = false;
  static constexpr auto initialize = libqcow_file_initialize;
  static constexpr auto release = libqcow_file_free;
  static constexpr auto close = libqcow_file_close;
  static constexpr auto mediaSize = libqcow_file_get_media_size;
  static constexpr auto read = libqcow_file_read_buffer_at_offset;
  static constexpr auto sprint = libqcow_error_sprint;
  static constexpr auto errorFree = libqcow_error_free;

  static int open(Handle* handle, const std::string& path, Error** error, std::string&) {
    return libqcow_file_open(handle, path.c_str(), LIBQCOW_OPEN_READ, error) == 1 ? 1 : -1;
  }
  static std::string format(Handle*) { return "QCOW2"; }
};

bool recognises(const std::string& path) {
  return libqcow_check_file_signature(path.c_str(), nullptr) == 1;
}

}  // namespace

const Container qcowContainer{recognises, LibyalImage<Qcow>::open};

}  // namespace winapi
