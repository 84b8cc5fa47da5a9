// A disk image file opened as a machine source: its container read read-only, its partitions and
// their file systems listed, nothing mounted and only the bytes asked for read.
#ifndef VRX_WINAPI_IMAGE_DISK_IMAGE_H
#define VRX_WINAPI_IMAGE_DISK_IMAGE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "winapi/image/file_system_tree.h"
#include "winapi/image/partition.h"

namespace winapi {

class TskImage;

class DiskImage {
 public:
  // Throws MachineError naming `path` and what is wrong: no image, a damaged or truncated one, a
  // partition table that cannot be read.
  static std::shared_ptr<const DiskImage> open(const std::string& path);
  ~DiskImage();

  const std::string& path() const { return path_; }
  // The container: "raw", "split raw", "VHD", "VHDX", "VMDK", "QCOW2", "EWF".
  std::string format() const;
  // The partitions in the table's order of numbers, or the one volume filling the image.
  const std::vector<Partition>& partitions() const { return partitions_; }
  // The partition numbered `number`; nullptr when there is none.
  const Partition* partition(unsigned number) const;
  // The bytes of the disk read so far, by everything reading this image.
  std::uint64_t bytesRead() const;
  // The size of the disk in bytes.
  std::uint64_t size() const;

  // The files of partition `number`. Throws MachineError naming the image and the partition when
  // there is no such partition, it is encrypted with BitLocker or its file system cannot be read.
  const FileSystemTree& files(unsigned number) const;

 private:
  DiskImage(const std::string& path, std::unique_ptr<TskImage> image);
  void addPartition(Partition partition);

  std::string path_;
  std::unique_ptr<TskImage> image_;
  std::vector<Partition> partitions_;
  std::vector<std::unique_ptr<FileSystemTree>> trees_;  // by partition index; null without one
  std::vector<std::string> problems_;  // why a partition's file system cannot be read
};

}  // namespace winapi

#endif
