// The registry as regedit exports it: a "Windows Registry Editor Version 5.00" file in UTF-16LE
// with a byte-order mark and CR LF line ends; the key, then every key below it in the order the
// registry enumerates them, each as its [key] line, its values (reg_value_text.h) and a blank
// line. mergeRegFile reads such a file back into the same keys and values.
#ifndef VRX_WINAPI_REG_EXPORT_H
#define VRX_WINAPI_REG_EXPORT_H

#include <iosfwd>

#include "winapi/formats/registry_key_names.h"
#include "winapi/support/registry_store.h"

namespace winapi {

// Writes `registry` from `key` down to `out`. Throws MachineError naming the key, before
// anything is written, when the registry has no such key; the roots a machine keeps are always
// there.
void exportRegistry(const Registry& registry, const RegistryKeyName& key, std::ostream& out);

}  // namespace winapi

#endif
