// VMDK disks, a descriptor and its extent files or one file holding both, through libvmdk.
#include <libvmdk.h>

#include "winapi/image/containers.h"
#include "winapi/image/libyal_image.h"

namespace winapi {

namespace {

struct Vmdk {
  using Handle = libvmdk_handle_t;
  using Error = libvmdk_error_t;
  static constexpr const char* name = "VMDK";
  static constexpr bool slow = false;
  static constexpr auto initialize = libvmdk_handle_initialize;
  static constexpr auto release = libvmdk_handle_free;
  static constexpr auto close = libvmdk_handle_close;
  static constexpr auto mediaSize = libvmdk_handle_get_media_size;
  static constexpr auto read = libvmdk_handle_read_buffer_at_offset;
  static constexpr auto sprint = libvmdk_error_sprint;
  static constexpr auto errorFree = libvmdk_error_free;

  static int open(Handle* handle, const std::string& path, Error** error, std::string&) {
    if (libvmdk_handle_open(handle, path.c_str(), LIBVMDK_OPEN_READ, error) != 1) return -1;
    return libvmdk_handle_open_extent_data_files(handle, error) == 1 ? 1 : -1;
  }
  static std::string format(Handle*) { return name; }
};

bool recognises(const std::string& path) {
  return libvmdk_check_file_signature(path.c_str(), nullptr) == 1;
}

}  // namespace

const Container vmdkContainer{recognises, LibyalImage<Vmdk>::open};

}  // namespace winapi
