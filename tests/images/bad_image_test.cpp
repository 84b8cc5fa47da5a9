// Images that cannot be read give one line naming the file and what is wrong with it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "tests/images/test_disks.h"
#include "winapi/image/image_files.h"
#include "winapi/support/errors.h"

namespace winapi {
namespace {

const std::uint64_t mib = 1 << 20;

// The message DiskImage::open throws for `path`, or what went wrong instead.
std::string openingError(const std::string& path) {
  try {
    DiskImage::open(path);
  } catch (const MachineError& error) {
    return error.what();
  }
  return "opened";
}

std::string filesError(const std::string& path, unsigned partition) {
  try {
    ImageFiles(DiskImage::open(path), {{'c', partition}});
  } catch (const MachineError& error) {
    return error.what();
  }
  return "opened";
}

// `message` is one line naming `path` and saying `what`.
void expectLine(const std::string& message, const std::string& path, const std::string& what) {
  EXPECT_EQ(message.rfind(path + ": ", 0), 0u) << message;
  EXPECT_NE(message.find(what), std::string::npos) << message;
  EXPECT_EQ(message.find('\n'), std::string::npos) << message;
}

TEST(BadImage, FilesThatAreNoDiskImage) {
  const std::string text = scratchPath("notes.txt");
  std::ofstream(text) << "not a disk at all\n";
  expectLine(openingError(text), text, "holds neither a partition table nor a file system");
  const std::string empty = scratchPath("empty.img");
  std::ofstream{empty};
  expectLine(openingError(empty), empty, "is empty");
  const std::string missing = scratchPath("missing.vhdx");
  expectLine(openingError(missing), missing, "cannot be opened (No such file or directory)");
}

TEST(BadImage, DamagedOrTruncatedPartitionTables) {
  SKIP_WITHOUT_TEST_DISKS();
  const std::string truncated = damagedCopy("truncated.raw", testDisk("gpt.raw"), mib, 100 * mib);
  expectLine(openingError(truncated), truncated,
             "partition 3 ends at byte 134200832 but the "
             "image has 104857600 bytes; the image is truncated");
  const std::string noGpt =
      damagedCopy("no_gpt.raw", testDisk("gpt.raw"), mib, 128 * mib, {{512, "NOT A GPT"}});
  expectLine(openingError(noGpt), noGpt, "its GPT partition table is damaged");
  const std::string badMbr = damagedCopy("bad_mbr.raw", testDisk("mbr.raw"), mib, 128 * mib,
                                         {{446 + 8, std::string(8, '\xff')}});
  expectLine(openingError(badMbr), badMbr, "its partition table in sector 0 cannot be read");
}

TEST(BadImage, VolumesThatCannotBeRead) {
  SKIP_WITHOUT_TEST_DISKS();
  const std::string bitLocker = damagedCopy("bitlocker.raw", testDisk("gpt.raw"), 42 * mib,
                                            128 * mib, {{41 * mib + 3, "-FVE-FS-"}});
  EXPECT_EQ(DiskImage::open(bitLocker)->partitions()[1].fileSystem, FileSystemKind::BitLocker);
  expectLine(filesError(bitLocker, 2), bitLocker, "partition 2 is encrypted with BitLocker");
  // An NTFS boot sector claiming no bytes per sector.
  const std::string badNtfs = damagedCopy("bad_ntfs.raw", testDisk("bare.raw"), mib, 128 * mib,
                                          {{11, std::string(2, '\0')}});
  EXPECT_EQ(DiskImage::open(badNtfs)->partitions()[0].fileSystem, FileSystemKind::Ntfs);
  expectLine(filesError(badNtfs, 0), badNtfs,
             "the NTFS file system of the whole image cannot be read (");
  expectLine(filesError(testDisk("gpt.raw"), 4), testDisk("gpt.raw"), "has no partition 4");
}

TEST(BadImage, ContainersWithPartsMissing) {
  SKIP_WITHOUT_TEST_DISKS();
  const std::string folder = scratchPath("segments/");
  mkdir(folder.c_str(), 0700);
  for (const char* segment : {"gpt.E01", "gpt.E03", "gpt.vmdk"}) {
    unlink((folder + segment).c_str());
    ASSERT_EQ(symlink(testDisk(segment).c_str(), (folder + segment).c_str()), 0);
  }
  expectLine(openingError(folder + "gpt.E01"), folder + "gpt.E01",
             "its segment files are incomplete or damaged (found gpt.E01); is a segment missing?");
  expectLine(openingError(folder + "gpt.vmdk"), folder + "gpt.vmdk",
             "cannot be read as a VMDK image");
}

}  // namespace
}  // namespace winapi
