// The folders and files of one file system inside an image, found as Windows finds them: each
// path component matched without regard to case, the exact spelling first, a short (8.3) name
// last. The folders walked are remembered, so a path is looked up once.
#ifndef VRX_WINAPI_IMAGE_FILE_SYSTEM_TREE_H
#define VRX_WINAPI_IMAGE_FILE_SYSTEM_TREE_H

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "winapi/files/machine_files.h"
#include "winapi/support/file_descriptor.h"

struct TSK_FS_INFO;

namespace winapi {

class FileSystemTree {
 public:
  // Takes `fileSystem`, which is closed with the tree.
  explicit FileSystemTree(TSK_FS_INFO* fileSystem);
  ~FileSystemTree();
  FileSystemTree(const FileSystemTree&) = delete;
  FileSystemTree& operator=(const FileSystemTree&) = delete;

  // The entry at `components` below the root ("" named for the root); nullopt when there is none.
  std::optional<FileEntry> find(const std::vector<std::string>& components) const;
  // The entries of the folder at `components`; empty when it is not one.
  std::vector<FileEntry> list(const std::vector<std::string>& components) const;
  // A file in memory holding the file's bytes; invalid when it is not a file or cannot be read.
  FileDescriptor open(const std::vector<std::string>& components) const;

 private:
  struct Node {
    FileEntry entry;
    std::uint64_t address = 0;  // its metadata's, as TSK numbers it
    std::string shortName;
  };

  std::optional<Node> resolve(const std::vector<std::string>& components) const;
  const std::vector<Node>& children(std::uint64_t folder) const;
  std::vector<Node> readFolder(std::uint64_t folder) const;

  TSK_FS_INFO* fileSystem_;
  Node root_;
  mutable std::mutex mutex_;
  mutable std::map<std::uint64_t, std::vector<Node>> folders_;
};

}  // namespace winapi

#endif
