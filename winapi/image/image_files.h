// The files of a machine kept in a disk image: drive letters mapped to the image's partitions.
#ifndef VRX_WINAPI_IMAGE_IMAGE_FILES_H
#define VRX_WINAPI_IMAGE_IMAGE_FILES_H

#include <map>
#include <memory>
#include <string>

#include "winapi/files/machine_files.h"
#include "winapi/image/disk_image.h"

namespace winapi {

class ImageFiles : public MachineFiles {
 public:
  // `letters`: drive letter (either case) → partition number. Throws MachineError naming the
  // image and the partition when one of them has no file system that can be read.
  ImageFiles(std::shared_ptr<const DiskImage> image, const std::map<char, unsigned>& letters);

  std::optional<FileEntry> find(const std::string& windowsPath) const override;
  std::vector<FileEntry> list(const std::string& windowsPath) const override;
  FileDescriptor open(const std::string& windowsPath) const override;
  // "IMAGE, partition N: C:\\path".
  std::string describe(const std::string& windowsPath) const override;
  // "disk image: 12582912 of 68719476736 bytes read (0.02 %)".
  std::string readingNote() const override;

  const DiskImage& image() const { return *image_; }

 private:
  struct Drive {
    unsigned partition = 0;
    const FileSystemTree* tree = nullptr;
  };
  const Drive* drive(char letter) const;

  std::shared_ptr<const DiskImage> image_;
  std::map<char, Drive> drives_;  // by lower-case letter
};

// The files of the partition the firmware starts Windows from, as drive C: of their own (read
// C:\EFI\Microsoft\Boot\BCD or C:\Boot\BCD from it): the EFI system partition, else the first
// partition holding Boot\BCD; nullptr when there is none.
std::unique_ptr<ImageFiles> systemPartitionFiles(std::shared_ptr<const DiskImage> image);

}  // namespace winapi

#endif
