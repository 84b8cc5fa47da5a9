#include "tests/images/test_disks.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace winapi {

std::string testDisk(const std::string& name) { return std::string(VRX_TEST_DISKS) + "/" + name; }

bool haveTestDisks() { return std::filesystem::exists(testDisk("two-windows.raw")); }

namespace {

// Removed, with all in it, when the tests end.
struct ScratchFolder {
  const std::string path = ::testing::TempDir() + "vrx_image_tests_" + std::to_string(getpid());
  ~ScratchFolder() { std::filesystem::remove_all(path); }
};
const ScratchFolder scratch;

}  // namespace

std::string scratchPath(const std::string& name) {
  std::filesystem::create_directories(scratch.path);
  return scratch.path + "/" + name;
}

std::string readHostFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::string readAll(const FileDescriptor& file) {
  std::string bytes;
  char buffer[65536];
  ssize_t count;
  while ((count = read(file.get(), buffer, sizeof buffer)) > 0) bytes.append(buffer, count);
  return bytes;
}

std::string damagedCopy(const std::string& name, const std::string& source, std::uint64_t copied,
                        std::uint64_t size,
                        const std::vector<std::pair<std::uint64_t, std::string>>& patches) {
  const std::string path = scratchPath(name);
  std::string bytes(copied, '\0');
  std::ifstream(source, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(copied));
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    for (const auto& [offset, patch] : patches) {
      out.seekp(static_cast<std::streamoff>(offset));
      out.write(patch.data(), static_cast<std::streamsize>(patch.size()));
    }
  }
  std::filesystem::resize_file(path, size);
  return path;
}

}  // namespace winapi
