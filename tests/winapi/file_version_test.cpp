#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_machine.h"
#include "winapi/formats/version_blocks.h"
#include "winapi/include/windows.h"
#include "winapi/support/little_endian.h"

namespace fs = std::filesystem;

namespace {

const char* const kFixtureDlls[] = {
    "build_comment.dll",    "build_comment32.dll", "no_translation.dll", "leading_blank.dll",
    "description_only.dll", "strings_only.dll",    "no_resources.dll"};

// A machine whose system directory holds the fixture DLLs made at build time.
class FileVersion : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* dll : kFixtureDlls) {
      fs::path built = fs::path(VRX_PE_FIXTURES) / dll;
      if (!fs::exists(built)) GTEST_SKIP() << built << " is built with the mingw tools";
      std::ifstream in(built, std::ios::binary);
      std::ostringstream bytes;
      bytes << in.rdbuf();
      drive_.write(std::string("drive_c/Windows/System32/") + dll, bytes.str());
    }
    drive_.write("drive_c/Windows/System32/notes.txt", "not an image");
  }

  TempDirectory drive_;
  CurrentMachine machine_{nlohmann::json::object(), drive_.path()};
};

std::string systemFile(const char* name) { return std::string("C:\\Windows\\System32\\") + name; }

std::vector<unsigned char> versionInfo(const std::string& path) {
  DWORD handle = 0xFFFF;
  DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
  EXPECT_EQ(handle, 0u);
  std::vector<unsigned char> buffer(size);
  if (size && !GetFileVersionInfoA(path.c_str(), 0, size, buffer.data())) buffer.clear();
  return buffer;
}

// The text of a sub-block, or "<none>".
std::string query(std::vector<unsigned char>& info, const char* subBlock) {
  LPVOID value = nullptr;
  UINT length = 0;
  if (!VerQueryValueA(info.data(), subBlock, &value, &length)) return "<none>";
  EXPECT_EQ(length, std::strlen(static_cast<const char*>(value)) + 1) << subBlock;
  return static_cast<const char*>(value);
}

TEST_F(FileVersion, ReadsTheResourcesOf32And64BitDlls) {
  for (const char* dll : {"build_comment.dll", "build_comment32.dll"}) {
    SCOPED_TRACE(dll);
    std::vector<unsigned char> info = versionInfo(systemFile(dll));
    ASSERT_FALSE(info.empty());
    LPVOID value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(info.data(), "\\", &value, &length));
    ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
    EXPECT_EQ(fixed->dwSignature, static_cast<DWORD>(VS_FFI_SIGNATURE));
    EXPECT_EQ(fixed->dwFileVersionMS, 0x00060001u);
    EXPECT_EQ(fixed->dwFileVersionLS, 0x1DB1446Au);  // 7601.17514
    ASSERT_TRUE(VerQueryValueA(info.data(), "\\VarFileInfo\\Translation", &value, &length));
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(*static_cast<const DWORD*>(value), 0x04B00409u);
    EXPECT_EQ(query(info, "\\StringFileInfo\\040904B0\\FileVersion"),
              "6.1.7601.17514 (win7sp1_rtm.101119-1850)");
    EXPECT_EQ(query(info, "\\stringfileinfo\\040904b0\\FILEDESCRIPTION"), "Windows Backup Utility");
  }
}

TEST_F(FileVersion, GivesWhatEachVersionResourceHas) {
  const struct {
    const char* dll;
    const char* translation;  // "<none>" when there is no table
    const char* version;
    const char* description;
  } cases[] = {
      {"no_translation.dll", "<none>", "1.0.0.1", "Untranslated library"},
      {"leading_blank.dll", "yes", " 2.0.0.0", "Blank-led library"},
      {"description_only.dll", "yes", "<none>", "Description without version"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.dll);
    std::vector<unsigned char> info = versionInfo(systemFile(c.dll));
    LPVOID value;
    UINT length;
    bool hasTable = VerQueryValueA(info.data(), "\\VarFileInfo\\Translation", &value, &length);
    EXPECT_EQ(hasTable ? "yes" : "<none>", std::string(c.translation));
    EXPECT_EQ(query(info, "\\StringFileInfo\\040904B0\\FileVersion"), c.version);
    EXPECT_EQ(query(info, "\\StringFileInfo\\040904B0\\FileDescription"), c.description);
  }
}

TEST_F(FileVersion, TellsWhyAFileHasNoVersion) {
  const std::pair<std::string, DWORD> cases[] = {
      {systemFile("no_resources.dll"), ERROR_RESOURCE_DATA_NOT_FOUND},
      {systemFile("strings_only.dll"), ERROR_RESOURCE_TYPE_NOT_FOUND},
      {systemFile("notes.txt"), ERROR_RESOURCE_DATA_NOT_FOUND},  // no image
      {systemFile("nosuch.dll"), ERROR_FILE_NOT_FOUND},
      {"C:\\NoSuchDirectory\\x.dll", ERROR_PATH_NOT_FOUND},
      {"\\Windows\\System32\\NOSUCH.dll", ERROR_FILE_NOT_FOUND},
  };
  for (const auto& [path, error] : cases) {
    DWORD handle = 0xFFFF;
    EXPECT_EQ(GetFileVersionInfoSizeA(path.c_str(), &handle), 0u) << path;
    EXPECT_EQ(GetLastError(), error) << path;
    EXPECT_EQ(handle, 0u);
  }
  EXPECT_EQ(GetFileVersionInfoSizeA(nullptr, nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(FileVersion, WantsTheWholeBufferAndLeavesItAloneOtherwise) {
  std::string path = systemFile("BUILD_COMMENT.DLL");
  DWORD size = GetFileVersionInfoSizeA(path.c_str(), nullptr);
  std::vector<unsigned char> buffer(size, 0xAB);
  EXPECT_FALSE(GetFileVersionInfoA(path.c_str(), 0, size - 1, buffer.data()));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(buffer[0], 0xAB);
  EXPECT_FALSE(GetFileVersionInfoA(path.c_str(), 0, size, nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_DATA));

  ASSERT_TRUE(GetFileVersionInfoA(path.c_str(), 0, size, buffer.data()));
  LPVOID value = &size;
  UINT length = 77;
  EXPECT_FALSE(
      VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904B0\\Comments", &value, &length));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
  EXPECT_EQ(value, &size);
  EXPECT_EQ(length, 0u);
}

// Version blocks made by hand: key, value and children as VS_VERSIONINFO lays them out.
std::string block(const std::string& key, const std::string& value, bool text,
                  const std::string& children = "", int lengthChange = 0) {
  std::string bytes(6, '\0');
  for (char c : key) bytes += std::string{c, '\0'};
  bytes += std::string(2, '\0');
  bytes.resize((bytes.size() + 3) & ~std::size_t{3}, '\0');
  bytes += value;
  bytes.resize((bytes.size() + 3) & ~std::size_t{3}, '\0');
  bytes += children;
  std::size_t valueLength = text ? value.size() / 2 : value.size();
  std::size_t length = bytes.size() + lengthChange;
  winapi::putLittleEndian(bytes, 0, length, 2);
  bytes[2] = static_cast<char>(valueLength);
  bytes[4] = text ? 1 : 0;
  return bytes;
}

std::string utf16(const std::string& ascii) {
  std::string bytes;
  for (char c : ascii) bytes += std::string{c, '\0'};
  return bytes + std::string(2, '\0');
}

std::vector<unsigned char> stored(const std::string& root) {
  std::vector<unsigned char> buffer(winapi::versionInfoSize(root));
  winapi::storeVersionInfo(root, buffer.data());
  return buffer;
}

TEST(VersionBlocks, NeverLeaveTheBlockThatHoldsThem) {
  std::string good = block("Good", utf16("yes"), true);
  std::string zero = std::string(4, '\0') + block("After", utf16("hidden"), true);
  // Children start on a 4-byte boundary after a value of any length.
  std::string odd = block("Odd", "ab", false, block("Child", utf16("c"), true));
  std::vector<unsigned char> info = stored(block("VS_VERSION_INFO", "", false, odd + good + zero));
  EXPECT_EQ(query(info, "\\Odd\\Child"), "c");
  EXPECT_EQ(query(info, "\\Good"), "yes");
  EXPECT_EQ(query(info, "\\After"), "<none>");  // behind a zero wLength
  EXPECT_EQ(query(info, "\\Good\\Deeper"), "<none>");
  std::vector<unsigned char> spoilt =
      stored(block("VS_VERSION_INFO", "", false, block("Long", utf16("no"), true, "", 64)));
  EXPECT_EQ(query(spoilt, "\\Long"), "<none>");  // claims more than its parent has

  LPVOID value = nullptr;
  UINT length = 0;
  // The ANSI copy lies in the room behind the block, not over the UTF-16 value.
  ASSERT_TRUE(VerQueryValueA(info.data(), "\\Good", &value, &length));
  EXPECT_GT(static_cast<unsigned char*>(value), info.data() + info.size() / 2);
  EXPECT_LT(static_cast<unsigned char*>(value), info.data() + info.size());

  // A value longer than its block is cut to the block.
  std::string cut = block("Cut", "abcd", false);
  cut[2] = 100;
  std::vector<unsigned char> cutInfo = stored(block("VS_VERSION_INFO", "", false, cut));
  ASSERT_TRUE(VerQueryValueA(cutInfo.data(), "\\Cut", &value, &length));
  EXPECT_EQ(length, 4u);
}

}  // namespace
