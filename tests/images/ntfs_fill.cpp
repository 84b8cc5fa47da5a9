// ntfs_fill VOLUME_FILE HOST_DIR: copies the folders and files under HOST_DIR into the NTFS volume
// in VOLUME_FILE (made by mkntfs), through libntfs-3g, without mounting anything. Tests build
// their disk images with it; nothing else can make NTFS folders as a normal user.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// The ntfs-3g headers use these and its types without including them.
#include <sys/stat.h>

#include <cstdarg>
#include <ctime>
// clang-format off
extern "C" {
#include <ntfs-3g/types.h>
#include <ntfs-3g/attrib.h>
#include <ntfs-3g/dir.h>
#include <ntfs-3g/inode.h>
#include <ntfs-3g/unistr.h>
#include <ntfs-3g/volume.h>
}
// clang-format on
// ntfs-3g defines these as macros.
#undef min
#undef max

namespace {

namespace fs = std::filesystem;

struct CloseInode {
  void operator()(ntfs_inode* inode) const { ntfs_inode_close(inode); }
};
using Inode = std::unique_ptr<ntfs_inode, CloseInode>;

// A new entry named `name` in `folder`, of `type` (S_IFDIR or S_IFREG).
Inode create(ntfs_inode* folder, const std::string& name, mode_t type) {
  ntfschar* wide = nullptr;
  const int length = ntfs_mbstoucs(name.c_str(), &wide);
  if (length < 0) throw std::runtime_error(name + ": not a valid name");
  Inode inode(ntfs_create(folder, 0, wide, static_cast<u8>(length), type));
  std::free(wide);
  if (!inode) throw std::runtime_error(name + ": cannot be created");
  return inode;
}

void writeData(ntfs_inode* inode, const fs::path& source) {
  std::ifstream in(source, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  if (bytes.empty()) return;
  ntfs_attr* data = ntfs_attr_open(inode, AT_DATA, AT_UNNAMED, 0);
  if (!data) throw std::runtime_error(source.string() + ": no data attribute");
  const s64 written = ntfs_attr_pwrite(data, 0, static_cast<s64>(bytes.size()), bytes.data());
  ntfs_attr_close(data);
  if (written != static_cast<s64>(bytes.size()))
    throw std::runtime_error(source.string() + ": cannot be written");
}

void fill(ntfs_inode* folder, const fs::path& source) {
  for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_directory()) {
      const Inode created = create(folder, name, S_IFDIR);
      fill(created.get(), entry.path());
    } else {
      const Inode created = create(folder, name, S_IFREG);
      writeData(created.get(), entry.path());
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: ntfs_fill VOLUME_FILE HOST_DIR\n");
    return 2;
  }
  ntfs_volume* volume = ntfs_mount(argv[1], NTFS_MNT_NONE);
  if (!volume) {
    std::perror(argv[1]);
    return 1;
  }
  int status = 0;
  try {
    const Inode root(ntfs_pathname_to_inode(volume, nullptr, "/"));
    fill(root.get(), argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ntfs_fill: %s\n", error.what());
    status = 1;
  }
  if (ntfs_umount(volume, FALSE) != 0) status = 1;
  return status;
}
