// One value as regedit exports it to a "Windows Registry Editor Version 5.00" file: its name in
// quotes with '\' and '"' escaped, or @ for the default value; then a REG_SZ that is whole text
// as "text", a four-byte REG_DWORD as dword:%08x, and everything else as its bytes: hex: for
// REG_BINARY, hex(N): for type N (hex(2): REG_EXPAND_SZ, hex(7): REG_MULTI_SZ, hex(b): REG_QWORD,
// hex(0): REG_NONE). A hex list goes on over lines ending in ",\" no wider than 80 characters,
// the next ones indented by two spaces.
#ifndef VRX_WINAPI_REG_VALUE_TEXT_H
#define VRX_WINAPI_REG_VALUE_TEXT_H

#include <string>

#include "winapi/support/registry_store.h"

namespace winapi {

// Appends the value's lines to `text`, each ended by CR LF. A REG_SZ goes out in quotes only
// when reading it back gives the same bytes: a terminating NUL and none before it, no line feed
// and no lone surrogate; otherwise as hex(1):.
void appendRegValue(std::wstring& text, const RegistryValue& value);

}  // namespace winapi

#endif
