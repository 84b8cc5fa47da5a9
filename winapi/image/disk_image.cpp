#include "winapi/image/disk_image.h"

#include "winapi/image/image_bytes.h"
#include "winapi/image/partition_table.h"
#include "winapi/image/tsk_image.h"
#include "winapi/support/errors.h"
#include "winapi/support/text.h"

namespace winapi {

namespace {

// Where a volume's first sector names what it holds.
const std::size_t oemNameOffset = 3;
const std::string bitLockerSignature = "-FVE-FS-";
const std::string ntfsSignature = "NTFS    ";

std::string tskMessage() {
  const char* text = tsk_error_get();
  std::string message = text ? text : "unknown error";
  tsk_error_reset();
  return message;
}

// The file systems looked for, each probed on its own: TSK's detection of all of them also probes
// for YAFFS2, a flash file system never found on these disks, and reads tens of megabytes doing it.
const TSK_FS_TYPE_ENUM probedFileSystems[] = {TSK_FS_TYPE_NTFS_DETECT,    TSK_FS_TYPE_FAT_DETECT,
                                              TSK_FS_TYPE_EXFAT,          TSK_FS_TYPE_EXT_DETECT,
                                              TSK_FS_TYPE_HFS_DETECT,     TSK_FS_TYPE_APFS_DETECT,
                                              TSK_FS_TYPE_ISO9660_DETECT, TSK_FS_TYPE_FFS_DETECT};

// The file system at `offset`; nullptr when none is found, with TSK's reason in `reason`.
TSK_FS_INFO* openFileSystem(TSK_IMG_INFO* image, std::uint64_t offset, std::string& reason) {
  reason.clear();
  for (const TSK_FS_TYPE_ENUM type : probedFileSystems) {
    if (TSK_FS_INFO* fileSystem = tsk_fs_open_img(image, static_cast<TSK_OFF_T>(offset), type))
      return fileSystem;
    // NTFS is probed first: its reason is the one worth reporting.
    const std::string message = tskMessage();
    if (reason.empty()) reason = message;
  }
  return nullptr;
}

FileSystemKind kindOf(TSK_FS_TYPE_ENUM type) {
  if (TSK_FS_TYPE_ISNTFS(type)) return FileSystemKind::Ntfs;
  if (TSK_FS_TYPE_ISFAT(type)) return FileSystemKind::Fat;
  return FileSystemKind::Other;
}

}  // namespace

DiskImage::DiskImage(const std::string& path, std::unique_ptr<TskImage> image)
    : path_(path), image_(std::move(image)) {}

DiskImage::~DiskImage() = default;

std::shared_ptr<const DiskImage> DiskImage::open(const std::string& path) {
  std::unique_ptr<ImageBytes> bytes = openImageBytes(path);
  if (bytes->size() == 0) throw MachineError(path + ": is empty");
  auto image = std::make_unique<TskImage>(std::move(bytes));
  if (!image->get()) throw MachineError(path + ": cannot be read (" + tskMessage() + ")");
  std::shared_ptr<DiskImage> disk(new DiskImage(path, std::move(image)));
  if (const auto table = readPartitionTable(*disk->image_, path)) {
    for (const Partition& partition : *table) disk->addPartition(partition);
    return disk;
  }
  Partition whole;
  whole.size = disk->image_->bytes().size();
  disk->addPartition(whole);
  if (disk->partitions_[0].fileSystem != FileSystemKind::None) return disk;
  const std::string sector0 = disk->image_->read(0, 512);
  if (sector0.size() == 512 && sector0.compare(510, 2, "\x55\xAA") == 0)
    throw MachineError(path + ": its partition table in sector 0 cannot be read");
  throw MachineError(path + ": holds neither a partition table nor a file system; it is not a " +
                     "disk image or a volume");
}

void DiskImage::addPartition(Partition partition) {
  std::unique_ptr<FileSystemTree> tree;
  std::string reason;
  std::string problem = path_ + ": " + describePartition(partition) + " holds no file system";
  const std::string boot = image_->read(partition.offset, oemNameOffset + 8);
  const bool bitLocker =
      boot.size() == oemNameOffset + 8 && boot.compare(oemNameOffset, 8, bitLockerSignature) == 0;
  TSK_FS_INFO* fileSystem =
      bitLocker ? nullptr : openFileSystem(image_->get(), partition.offset, reason);
  if (bitLocker) {
    partition.fileSystem = FileSystemKind::BitLocker;
    partition.fileSystemName = "BitLocker";
    problem = path_ + ": " + describePartition(partition) + " is encrypted with BitLocker";
  } else if (fileSystem) {
    partition.fileSystem = kindOf(fileSystem->ftype);
    partition.fileSystemName = asciiUpper(tsk_fs_type_toname(fileSystem->ftype));
    const bool truncated = fileSystem->last_block_act < fileSystem->last_block;
    tree = std::make_unique<FileSystemTree>(fileSystem);
    if (truncated)
      throw MachineError(path_ + ": the file system of " + describePartition(partition) +
                         " runs past the end of the image; the image is truncated");
  } else if (boot.size() == oemNameOffset + 8 &&
             boot.compare(oemNameOffset, 8, ntfsSignature) == 0) {
    partition.fileSystem = FileSystemKind::Ntfs;
    partition.fileSystemName = "NTFS";
    problem = path_ + ": the NTFS file system of " + describePartition(partition) +
              " cannot be read (" + reason + ")";
  }
  tsk_error_reset();
  partitions_.push_back(std::move(partition));
  trees_.push_back(std::move(tree));
  problems_.push_back(problem);
}

std::string DiskImage::format() const { return image_->bytes().format(); }

std::uint64_t DiskImage::bytesRead() const { return image_->bytesRead(); }

std::uint64_t DiskImage::size() const { return image_->bytes().size(); }

const Partition* DiskImage::partition(unsigned number) const {
  for (const Partition& partition : partitions_)
    if (partition.number == number) return &partition;
  return nullptr;
}

const FileSystemTree& DiskImage::files(unsigned number) const {
  for (std::size_t i = 0; i < partitions_.size(); ++i) {
    if (partitions_[i].number != number) continue;
    if (!trees_[i]) throw MachineError(problems_[i]);
    return *trees_[i];
  }
  throw MachineError(path_ + ": has no partition " + std::to_string(number));
}

}  // namespace winapi
