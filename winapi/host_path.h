// Finding the file of a Windows path under a machine directory: drive X: is drive_x/, and each
// component is matched without regard to case, as Windows file systems do.
#ifndef VRX_WINAPI_HOST_PATH_H
#define VRX_WINAPI_HOST_PATH_H

#include <optional>
#include <string>

namespace winapi {

// nullopt when the path is not drive-absolute ("C:\\…", "C:/…", "C:") or names no file.
std::optional<std::string> findHostPath(const std::string& machineDirectory,
                                        const std::string& windowsPath);

}  // namespace winapi

#endif
