// The containers that keep a disk in a file of their own format, each read through its libyal
// library; image_bytes.cpp asks each in turn whether it knows a file.
#ifndef VRX_WINAPI_IMAGE_CONTAINERS_H
#define VRX_WINAPI_IMAGE_CONTAINERS_H

#include <memory>
#include <string>

#include "winapi/image/image_bytes.h"

namespace winapi {

struct Container {
  // Whether the file at the path has this container's signature.
  bool (*recognises)(const std::string& path);
  // The disk inside; throws MachineError naming the file.
  std::unique_ptr<ImageBytes> (*open)(const std::string& path);
};

extern const Container vhdiContainer;  // VHD and VHDX
extern const Container vmdkContainer;
extern const Container qcowContainer;
extern const Container ewfContainer;

// The raw disk in `path` and, when its name ends in .001, the segments .002, .003 … after it.
std::unique_ptr<ImageBytes> openRawImage(const std::string& path);

}  // namespace winapi

#endif
