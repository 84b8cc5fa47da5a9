#include "winapi/image/file_system_tree.h"

#include <sys/mman.h>
#include <tsk/libtsk.h>

#include <algorithm>
#include <memory>

#include "winapi/support/text.h"

namespace winapi {

namespace {

struct CloseFolder {
  void operator()(TSK_FS_DIR* folder) const { tsk_fs_dir_close(folder); }
};
struct CloseFile {
  void operator()(TSK_FS_FILE* file) const { tsk_fs_file_close(file); }
};
using File = std::unique_ptr<TSK_FS_FILE, CloseFile>;

// Seconds between 1601-01-01, where FILETIME counts from, and the Unix epoch.
const std::uint64_t filetimeEpochSeconds = 11644473600;
// NTFS keeps its own metadata ($MFT, $Bitmap … $Extend) in the first 16 records, which Windows
// never lists.
const TSK_INUM_T ntfsFirstUserRecord = 16;

std::uint64_t filetime(const TSK_FS_META& meta) {
  if (meta.mtime <= 0) return 0;
  return (static_cast<std::uint64_t>(meta.mtime) + filetimeEpochSeconds) * 10000000 +
         meta.mtime_nano / 100;
}

// Whether Windows would list the name: allocated, not "." or "..", not a file system's own
// metadata, not a file TSK makes up (orphan files, the FAT tables).
bool listed(const TSK_FS_INFO& fileSystem, const TSK_FS_FILE& file) {
  const TSK_FS_NAME& name = *file.name;
  if (!file.meta || !(name.flags & TSK_FS_NAME_FLAG_ALLOC) || TSK_FS_ISDOT(name.name)) return false;
  if (file.meta->type == TSK_FS_META_TYPE_VIRT || file.meta->type == TSK_FS_META_TYPE_VIRT_DIR)
    return false;
  return !(TSK_FS_TYPE_ISNTFS(fileSystem.ftype) && name.meta_addr < ntfsFirstUserRecord &&
           name.name[0] == '$');
}

FileEntry entryOf(const TSK_FS_FILE& file, const std::string& name) {
  FileEntry entry;
  entry.name = name;
  entry.directory = file.meta->type == TSK_FS_META_TYPE_DIR;
  entry.size = entry.directory ? 0 : static_cast<std::uint64_t>(file.meta->size);
  entry.lastWritten = filetime(*file.meta);
  return entry;
}

}  // namespace

FileSystemTree::FileSystemTree(TSK_FS_INFO* fileSystem) : fileSystem_(fileSystem) {
  root_.entry.directory = true;
  root_.address = fileSystem->root_inum;
  const File root(tsk_fs_file_open_meta(fileSystem, nullptr, fileSystem->root_inum));
  if (root && root->meta) root_.entry.lastWritten = filetime(*root->meta);
}

FileSystemTree::~FileSystemTree() { tsk_fs_close(fileSystem_); }

std::vector<FileSystemTree::Node> FileSystemTree::readFolder(std::uint64_t folder) const {
  std::vector<Node> nodes;
  const std::unique_ptr<TSK_FS_DIR, CloseFolder> entries(tsk_fs_dir_open_meta(fileSystem_, folder));
  if (!entries) {
    tsk_error_reset();
    return nodes;
  }
  for (std::size_t i = 0; i < tsk_fs_dir_getsize(entries.get()); ++i) {
    const File file(tsk_fs_dir_get(entries.get(), i));
    if (!file || !listed(*fileSystem_, *file)) continue;
    Node node;
    node.entry = entryOf(*file, file->name->name);
    node.address = file->name->meta_addr;
    if (file->name->shrt_name) node.shortName = file->name->shrt_name;
    nodes.push_back(std::move(node));
  }
  tsk_error_reset();
  return nodes;
}

const std::vector<FileSystemTree::Node>& FileSystemTree::children(std::uint64_t folder) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  auto found = folders_.find(folder);
  if (found == folders_.end()) found = folders_.emplace(folder, readFolder(folder)).first;
  return found->second;
}

std::optional<FileSystemTree::Node> FileSystemTree::resolve(
    const std::vector<std::string>& components) const {
  const Node* node = &root_;
  for (const std::string& component : components) {
    if (!node->entry.directory) return std::nullopt;
    const std::vector<Node>& nodes = children(node->address);
    const Node* next = nullptr;
    for (const Node& child : nodes)
      if (child.entry.name == component) next = &child;
    for (const Node& child : nodes)
      if (!next && equalsIgnoringCase(child.entry.name, component)) next = &child;
    for (const Node& child : nodes)
      if (!next && !child.shortName.empty() && equalsIgnoringCase(child.shortName, component))
        next = &child;
    if (!next) return std::nullopt;
    node = next;
  }
  return *node;
}

std::optional<FileEntry> FileSystemTree::find(const std::vector<std::string>& components) const {
  const std::optional<Node> node = resolve(components);
  if (!node) return std::nullopt;
  return node->entry;
}

std::vector<FileEntry> FileSystemTree::list(const std::vector<std::string>& components) const {
  std::vector<FileEntry> entries;
  const std::optional<Node> node = resolve(components);
  if (!node || !node->entry.directory) return entries;
  for (const Node& child : children(node->address)) entries.push_back(child.entry);
  return entries;
}

FileDescriptor FileSystemTree::open(const std::vector<std::string>& components) const {
  const std::optional<Node> node = resolve(components);
  if (!node || node->entry.directory) return FileDescriptor();
  const File file(tsk_fs_file_open_meta(fileSystem_, nullptr, node->address));
  FileDescriptor memory(memfd_create(node->entry.name.c_str(), MFD_CLOEXEC));
  if (!file || !file->meta || !memory.valid()) return FileDescriptor();
  const TSK_OFF_T size = file->meta->size;
  std::vector<char> buffer(static_cast<std::size_t>(std::min<TSK_OFF_T>(size, 1 << 20)));
  for (TSK_OFF_T offset = 0; offset < size;) {
    const ssize_t count = tsk_fs_file_read(file.get(), offset, buffer.data(), buffer.size(),
                                           TSK_FS_FILE_READ_FLAG_NONE);
    if (count <= 0 ||
        !writeFileBytes(memory.get(), {buffer.data(), static_cast<std::size_t>(count)})) {
      tsk_error_reset();
      return FileDescriptor();
    }
    offset += count;
  }
  lseek(memory.get(), 0, SEEK_SET);
  return memory;
}

}  // namespace winapi
