// The files of a machine kept in folders of this host: a described machine's or a Wine prefix's
// drive_c/, drive_d/ … (one folder per drive), or a Windows volume copied or mounted whole, whose
// folder is drive C:.
#ifndef VRX_WINAPI_FOLDER_FILES_H
#define VRX_WINAPI_FOLDER_FILES_H

#include <filesystem>
#include <optional>
#include <string>

#include "winapi/files/machine_files.h"

namespace winapi {

class FolderFiles : public MachineFiles {
 public:
  // Drive X: is the folder drive_x/ of `directory`, named in any case.
  static FolderFiles drives(std::filesystem::path directory);
  // Drive C: is `directory`; there are no other drives.
  static FolderFiles volume(std::filesystem::path directory);

  std::optional<FileEntry> find(const std::string& windowsPath) const override;
  std::vector<FileEntry> list(const std::string& windowsPath) const override;
  FileDescriptor open(const std::string& windowsPath) const override;
  std::string describe(const std::string& windowsPath) const override;

  // The host file or folder of a Windows path; nullopt when there is none.
  std::optional<std::filesystem::path> hostPath(const std::string& windowsPath) const;

 private:
  FolderFiles(std::filesystem::path directory, bool wholeVolume);
  std::optional<std::filesystem::path> driveFolder(char drive) const;

  std::filesystem::path directory_;
  bool wholeVolume_;
};

// The entry of `directory` named `name`: the exact spelling first, else one equal without regard
// to case.
std::optional<std::filesystem::path> findEntry(const std::filesystem::path& directory,
                                               const std::string& name);

}  // namespace winapi

#endif
