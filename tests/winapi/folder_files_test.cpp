#include "winapi/files/folder_files.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "test_machine.h"
#include "winapi/support/file_descriptor.h"

using winapi::FileEntry;
using winapi::FolderFiles;

TEST(FolderFiles, DrivesMatchEachComponentWithoutRegardToCase) {
  TempDirectory dir;
  dir.write("drive_c/Windows/System32/drivers/etc/hosts", "127.0.0.1 localhost\n");
  dir.makeDirectory("drive_c/Program Files");
  dir.write("Drive_D/pagefile.sys", "1234");
  const FolderFiles files = FolderFiles::drives(dir.path());
  const std::string hosts = dir.path() + "/drive_c/Windows/System32/drivers/etc/hosts";
  EXPECT_EQ(files.hostPath("c:\\WINDOWS\\system32\\DRIVERS\\etc\\HOSTS"), hosts);
  EXPECT_EQ(files.hostPath("C:/Windows/System32/drivers/etc/hosts"), hosts);
  EXPECT_EQ(files.hostPath("C:\\Windows\\.\\Temp\\..\\System32\\\\drivers\\etc\\hosts"), hosts);
  EXPECT_EQ(files.hostPath("C:\\program files"), dir.path() + "/drive_c/Program Files");
  EXPECT_EQ(files.hostPath("C:\\"), dir.path() + "/drive_c");
  EXPECT_EQ(files.hostPath("d:\\PAGEFILE.SYS"), dir.path() + "/Drive_D/pagefile.sys");
  EXPECT_FALSE(files.hostPath("C:\\Windows\\System32\\drivers\\etc\\hosts.bak"));
  EXPECT_FALSE(files.hostPath("E:\\Windows"));
  EXPECT_FALSE(files.hostPath("Windows\\System32"));
  EXPECT_FALSE(files.hostPath("C:Windows"));
  EXPECT_FALSE(FolderFiles::drives("").hostPath("C:\\"));
  // A missing file is named where it would be, so messages point at the right place.
  EXPECT_EQ(files.describe("C:\\Windows\\nothing.ini"),
            dir.path() + "/drive_c/Windows/nothing.ini");
}

TEST(FolderFiles, AVolumeFolderIsDriveCAlone) {
  TempDirectory dir;
  dir.write("Windows/win.ini", "[windows]\r\n");
  dir.write("drive_d/pagefile.sys", "1234");
  const FolderFiles files = FolderFiles::volume(dir.path());
  EXPECT_EQ(files.hostPath("C:\\windows\\WIN.INI"), dir.path() + "/Windows/win.ini");
  EXPECT_FALSE(files.find("D:\\pagefile.sys"));
  ASSERT_TRUE(files.find("C:\\drive_d\\pagefile.sys"));
}

TEST(FolderFiles, EntriesAndBytesAreThoseOfTheHostFiles) {
  TempDirectory dir;
  dir.write("drive_c/Users/alice/NTUSER.DAT", std::string(5000, 'x') + "end");
  dir.makeDirectory("drive_c/Users/bob");
  const FolderFiles files = FolderFiles::drives(dir.path());

  std::optional<FileEntry> hive = files.find("C:\\users\\ALICE\\ntuser.dat");
  ASSERT_TRUE(hive);
  EXPECT_EQ(hive->name, "NTUSER.DAT");
  EXPECT_FALSE(hive->directory);
  EXPECT_EQ(hive->size, 5003u);
  // Written just now: after 2020-01-01 as a FILETIME.
  EXPECT_GT(hive->lastWritten, 132223104000000000u);

  std::vector<FileEntry> users = files.list("C:\\Users");
  std::sort(users.begin(), users.end(),
            [](const FileEntry& a, const FileEntry& b) { return a.name < b.name; });
  ASSERT_EQ(users.size(), 2u);
  EXPECT_EQ(users[0].name, "alice");
  EXPECT_TRUE(users[0].directory);
  EXPECT_EQ(users[1].name, "bob");
  EXPECT_TRUE(files.list("C:\\Users\\alice\\NTUSER.DAT").empty());

  EXPECT_EQ(winapi::readFileBytes(files.open("C:\\Users\\alice\\NTUSER.DAT").get()),
            std::string(5000, 'x') + "end");
  EXPECT_EQ(winapi::readFileBytes(files.open("C:\\Users\\alice\\NTUSER.DAT").get(), 3), "xxx");
  EXPECT_FALSE(files.open("C:\\Users\\bob").valid());
  EXPECT_FALSE(files.open("C:\\Users\\carol\\NTUSER.DAT").valid());
}
