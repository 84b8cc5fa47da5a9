// Finding the file of a Windows path under a machine directory: drive X: is drive_x/, and each
// component is matched without regard to case, as Windows file systems do.
#ifndef VRX_WINAPI_HOST_PATH_H
#define VRX_WINAPI_HOST_PATH_H

#include <filesystem>
#include <optional>
#include <string>

namespace winapi {

// The entry of `directory` named `name`: the exact spelling first, else one equal without regard
// to case.
std::optional<std::filesystem::path> findEntry(const std::filesystem::path& directory,
                                               const std::string& name);

// nullopt when the path is not drive-absolute ("C:\\…", "C:/…", "C:") or names no file.
std::optional<std::string> findHostPath(const std::string& machineDirectory,
                                        const std::string& windowsPath);

}  // namespace winapi

#endif
