// The disks make_test_disks.sh makes before the image tests, and damaged copies of them.
#ifndef VRX_TESTS_IMAGES_TEST_DISKS_H
#define VRX_TESTS_IMAGES_TEST_DISKS_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "winapi/support/file_descriptor.h"

namespace winapi {

// A file of the test disks' folder: "gpt.raw", "volume/Windows/win.ini" …
std::string testDisk(const std::string& name);
bool haveTestDisks();

std::string readHostFile(const std::string& path);
// All the bytes `file` reads from its start.
std::string readAll(const FileDescriptor& file);

// `name` in a temporary folder of this process's own.
std::string scratchPath(const std::string& name);

// A file in the scratch folder holding the first `copied` bytes of `source`, then zeros
// up to `size`, with each (offset, bytes) of `patches` written over it.
std::string damagedCopy(const std::string& name, const std::string& source, std::uint64_t copied,
                        std::uint64_t size,
                        const std::vector<std::pair<std::uint64_t, std::string>>& patches = {});

}  // namespace winapi

#define SKIP_WITHOUT_TEST_DISKS()                        \
  if (!winapi::haveTestDisks())                          \
  GTEST_SKIP() << "no test disks in " VRX_TEST_DISKS     \
                  " (made by the make_test_disks test, " \
                  "which needs libntfs-3g, mkntfs, sgdisk, mtools, qemu-img and ewfacquire)"

#endif
