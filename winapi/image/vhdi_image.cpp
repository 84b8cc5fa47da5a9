// VHD and VHDX disks, through libvhdi.
#include <libvhdi.h>

#include "winapi/image/containers.h"
#include "winapi/image/libyal_image.h"

namespace winapi {

namespace {

struct Vhdi {
  using Handle = libvhdi_file_t;
  using Error = libvhdi_error_t;
  static constexpr const char* name = "VHD/VHDX";
  static constexpr bool slow = false;
  static constexpr auto initialize = libvhdi_file_initialize;
  static constexpr auto release = libvhdi_file_free;
  static constexpr auto close = libvhdi_file_close;
  static constexpr auto mediaSize = libvhdi_file_get_media_size;
  static constexpr auto read = libvhdi_file_read_buffer_at_offset;
  static constexpr auto sprint = libvhdi_error_sprint;
  static constexpr auto errorFree = libvhdi_error_free;

  static int open(Handle* handle, const std::string& path, Error** error, std::string& refusal) {
    if (libvhdi_file_open(handle, path.c_str(), LIBVHDI_OPEN_READ, error) != 1) return -1;
    // A differencing disk holds only what changed since its parent, which is not read here.
    std::uint32_t type = 0;
    if (libvhdi_file_get_disk_type(handle, &type, error) != 1) return -1;
    if (type == LIBVHDI_DISK_TYPE_DIFFERENTIAL) {
      libvhdi_file_close(handle, nullptr);
      refusal =
          "is a differencing disk, which holds only the changes to a parent disk; give the "
          "parent disk instead";
      return 0;
    }
    return 1;
  }
  static std::string format(Handle* handle) {
    int type = LIBVHDI_FILE_TYPE_UNKNOWN;
    libvhdi_file_get_file_type(handle, &type, nullptr);
    return type == LIBVHDI_FILE_TYPE_VHDX ? "VHDX" : "VHD";
  }
};

bool recognises(const std::string& path) {
  return libvhdi_check_file_signature(path.c_str(), nullptr) == 1;
}

}  // namespace

const Container vhdiContainer{recognises, LibyalImage<Vhdi>::open};

}  // namespace winapi
