// The files of a Windows volume read out of disk images, compared with the folders the images
// were made from.
#include "winapi/image/image_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/images/test_disks.h"

namespace winapi {
namespace {

std::vector<std::string> names(const std::vector<FileEntry>& entries) {
  std::vector<std::string> result;
  for (const FileEntry& entry : entries) result.push_back(entry.name);
  std::sort(result.begin(), result.end());
  return result;
}

ImageFiles gptMachine(const std::string& name) {
  return ImageFiles(DiskImage::open(testDisk(name)), {{'C', 2}, {'d', 3}});
}

TEST(ImageFiles, EveryContainerReadsTheSameFiles) {
  SKIP_WITHOUT_TEST_DISKS();
  const std::string software = readHostFile(testDisk("volume/Windows/System32/config/SOFTWARE"));
  for (const char* name :
       {"gpt.raw", "gpt.001", "gpt.vhdx", "gpt.vhd", "gpt.vmdk", "gpt.qcow2", "gpt.E01"}) {
    const ImageFiles files = gptMachine(name);
    EXPECT_EQ(names(files.list("C:\\")), (std::vector<std::string>{"Users", "Windows"})) << name;
    EXPECT_EQ(names(files.list("C:\\Windows\\System32\\config")),
              (std::vector<std::string>{"SOFTWARE", "SYSTEM"}))
        << name;
    EXPECT_EQ(readAll(files.open("C:\\Windows\\System32\\config\\SOFTWARE")), software) << name;
    EXPECT_EQ(readAll(files.open("D:\\pagefile.sys")), "pagefile") << name;
  }
}

TEST(ImageFiles, FindsEntriesWithoutRegardToCaseTheExactSpellingFirst) {
  SKIP_WITHOUT_TEST_DISKS();
  const ImageFiles files = gptMachine("gpt.raw");
  const auto software = files.find("c:/WINDOWS/system32/Config/software");
  ASSERT_TRUE(software);
  EXPECT_EQ(software->name, "SOFTWARE");
  EXPECT_FALSE(software->directory);
  EXPECT_EQ(software->size, 1500000u);
  // 2020-01-01 as a FILETIME: the image was made after it.
  EXPECT_GT(software->lastWritten, 132223104000000000u);
  const auto folder = files.find("C:\\windows\\System32");
  ASSERT_TRUE(folder);
  EXPECT_TRUE(folder->directory);
  EXPECT_EQ(folder->size, 0u);
  EXPECT_EQ(files.find("D:\\Data\\CASE.TXT")->size, 10u);
  EXPECT_EQ(files.find("D:\\Data\\Case.txt")->size, 5u);
  EXPECT_TRUE(files.find("D:\\Data\\case.TXT"));
  EXPECT_EQ(names(files.list("d:\\DATA")), (std::vector<std::string>{"CASE.TXT", "Case.txt"}));
  EXPECT_FALSE(files.find("C:\\Windows\\win.ini\\x"));
  EXPECT_FALSE(files.find("C:\\Windows\\missing"));
  EXPECT_FALSE(files.find("E:\\Windows"));
  EXPECT_TRUE(files.list("C:\\Windows\\win.ini").empty());
}

TEST(ImageFiles, OpenGivesExactlyTheFilesBytes) {
  SKIP_WITHOUT_TEST_DISKS();
  const ImageFiles files = gptMachine("gpt.raw");
  // win.ini is resident in its MFT record; SOFTWARE spans many clusters.
  EXPECT_EQ(readAll(files.open("C:\\Windows\\WIN.INI")), "[fonts]\r\n");
  EXPECT_EQ(readAll(files.open("C:\\Windows\\System32\\config\\SYSTEM")),
            readHostFile(testDisk("volume/Windows/System32/config/SYSTEM")));
  EXPECT_FALSE(files.open("C:\\Windows").valid());
  EXPECT_FALSE(files.open("C:\\Windows\\missing.ini").valid());
  EXPECT_EQ(files.describe("c:/Windows/win.ini"),
            testDisk("gpt.raw") + ", partition 2: C:\\Windows\\win.ini");
}

TEST(ImageFiles, ReadsOnlyTheBytesItNeeds) {
  SKIP_WITHOUT_TEST_DISKS();
  const auto image = DiskImage::open(testDisk("gpt.raw"));
  const ImageFiles files(image, {{'c', 2}});
  files.open("C:\\Windows\\win.ini");
  const std::uint64_t opened = image->bytesRead();
  EXPECT_GT(opened, 0u);
  EXPECT_LT(opened, 128u << 20 >> 4);
  files.open("C:\\Windows\\System32\\config\\SOFTWARE");
  EXPECT_GE(image->bytesRead() - opened, 1500000u);
  EXPECT_LT(image->bytesRead(), 128u << 20 >> 3);
}

TEST(ImageFiles, TheSystemPartitionIsItsOwnDriveC) {
  SKIP_WITHOUT_TEST_DISKS();
  const std::string bcd = readHostFile(testDisk("BCD"));
  const auto efi = systemPartitionFiles(DiskImage::open(testDisk("gpt.vhdx")));
  ASSERT_TRUE(efi);
  EXPECT_EQ(readAll(efi->open("C:\\EFI\\Microsoft\\Boot\\BCD")), bcd);
  EXPECT_EQ(efi->describe("C:\\EFI"), testDisk("gpt.vhdx") + ", partition 1: C:\\EFI");
  const auto reserved = systemPartitionFiles(DiskImage::open(testDisk("mbr.raw")));
  ASSERT_TRUE(reserved);
  EXPECT_EQ(readAll(reserved->open("C:\\Boot\\BCD")), bcd);
  EXPECT_FALSE(reserved->find("C:\\Windows"));
  EXPECT_FALSE(systemPartitionFiles(DiskImage::open(testDisk("two-windows.raw"))));
}

TEST(ImageFiles, TwoWindowsPartitionsAreReadApart) {
  SKIP_WITHOUT_TEST_DISKS();
  const auto image = DiskImage::open(testDisk("two-windows.raw"));
  EXPECT_EQ(readAll(ImageFiles(image, {{'c', 1}}).open("C:\\Windows\\win.ini")), "[fonts]\r\n");
  EXPECT_EQ(readAll(ImageFiles(image, {{'c', 5}}).open("C:\\Windows\\win.ini")), "second\r\n");
  EXPECT_EQ(readAll(ImageFiles(DiskImage::open(testDisk("bare.raw")), {{'c', 0}})
                        .open("C:\\Windows\\win.ini")),
            "[fonts]\r\n");
}

}  // namespace
}  // namespace winapi
