// Regedit export files, imported as regedit imports them: "Windows Registry Editor Version 5.00"
// (UTF-16LE with a byte-order mark, or UTF-8 with or without one) and "REGEDIT4" (text in the
// machine's ANSI code page, and so are its hex(1), hex(2) and hex(7) strings).
#ifndef VRX_WINAPI_REG_FILE_H
#define VRX_WINAPI_REG_FILE_H

#include <string>
#include <string_view>

#include "winapi/support/registry_store.h"

namespace winapi {

// Merges the keys and values of one file, `bytes` as read, into `registry`. Throws MachineError
// "file:line:column: problem" for a file regedit would not import.
void mergeRegFile(Registry& registry, std::string_view bytes, const std::string& file,
                  unsigned ansiCodePage);

}  // namespace winapi

#endif
