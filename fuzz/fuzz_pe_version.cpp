// Any bytes as a PE file: the version resource is looked for as GetFileVersionInfoSizeA looks
// for it, and when there is one, the buffer GetFileVersionInfoA makes of it is queried as the
// collectors query it. Nothing may read outside the image or the buffer. Seeds: the winapi tests'
// fixture DLLs, made at build time.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "winapi/formats/pe_resources.h"
#include "winapi/formats/version_blocks.h"
#include "winapi/include/windows.h"

namespace {

const char* const kSubBlocks[] = {
    "\\",
    "\\VarFileInfo\\Translation",
    "\\StringFileInfo\\040904B0\\FileVersion",
    "\\StringFileInfo\\040904b0\\FileDescription",
    "\\StringFileInfo",
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view image(reinterpret_cast<const char*>(data), size);
  winapi::ResourceLookup resource = winapi::findResource(image, winapi::kVersionResourceType);
  if (resource.error != ERROR_SUCCESS) return 0;
  auto block = winapi::versionData(resource.data);
  if (!block) return 0;
  std::vector<unsigned char> buffer(winapi::versionInfoSize(*block));
  winapi::storeVersionInfo(*block, buffer.data());
  for (const char* subBlock : kSubBlocks) {
    LPVOID value = nullptr;
    UINT length = 0;
    VerQueryValueA(buffer.data(), subBlock, &value, &length);
  }
  return 0;
}
