// The registry of a described machine: the regedit export files of its registry/ folder.
#ifndef VRX_WINAPI_REGISTRY_FOLDER_H
#define VRX_WINAPI_REGISTRY_FOLDER_H

#include <memory>
#include <string>

#include "winapi/support/registry_store.h"

namespace winapi {

// The registry of the machine directory: registry/*.reg merged in file-name order; an empty
// one without them.
std::shared_ptr<Registry> readRegistryFiles(const std::string& directory, unsigned ansiCodePage);

}  // namespace winapi

#endif
