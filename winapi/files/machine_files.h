// The files of a machine, wherever they are kept: folders on this host (a described machine's
// drive_c/, a Wine prefix, a Windows volume copied or mounted) or a file system inside a disk
// image. Everything that reads a machine's files goes through this, so each kind of machine is
// read by the same code. Nothing is ever written.
#ifndef VRX_WINAPI_MACHINE_FILES_H
#define VRX_WINAPI_MACHINE_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "winapi/support/file_descriptor.h"

namespace winapi {

struct FileEntry {
  std::string name;  // as the file system spells it
  bool directory = false;
  std::uint64_t size = 0;         // in bytes; 0 for a directory
  std::uint64_t lastWritten = 0;  // a FILETIME; 0 when unknown
};

class MachineFiles {
 public:
  virtual ~MachineFiles() = default;

  // Paths are drive-absolute Windows paths in UTF-8 ("C:\\Windows\\win.ini"), each component
  // matched without regard to case, the exact spelling first.

  // nullopt when there is no such file or directory.
  virtual std::optional<FileEntry> find(const std::string& windowsPath) const = 0;
  // The entries of a directory, "." and ".." left out; empty when it is not one.
  virtual std::vector<FileEntry> list(const std::string& windowsPath) const = 0;
  // A descriptor that reads the file from its start (for a file inside an image, a file in
  // memory holding its bytes); an invalid one when it is not a file or cannot be read.
  virtual FileDescriptor open(const std::string& windowsPath) const = 0;
  // How messages name the file: its host path, or the image, partition and path.
  virtual std::string describe(const std::string& windowsPath) const = 0;
  // What reading the files has cost where that is worth telling (the bytes read of a disk
  // image); "" otherwise.
  virtual std::string readingNote() const { return ""; }
};

}  // namespace winapi

#endif
