#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>

#include "frame/procedure.h"
#include "test_machine.h"
#include "winapi/include/setupapi.h"
#include "winapi/include/windows.h"

namespace {

typedef BOOL(WINAPI* DisableFunction)(PVOID*);
typedef BOOL(WINAPI* RevertFunction)(PVOID);

const char* const kSystem32Copy = "C:\\Windows\\System32\\setup\\which.inf";

// A 64-bit Windows whose System32 and SysWOW64 each hold a copy of which.inf that says where
// it lies.
class FsRedirection : public ::testing::Test {
 protected:
  void makeMachine(bool wow64) {
    for (const char* directory : {"System32", "SysWOW64"})
      drive_.write(std::string("drive_c/Windows/") + directory + "/setup/which.inf",
                   std::string("[Version]\nSignature=$Chicago$\n[Which]\nis=") + directory + "\n");
    drive_.write("drive_c/Windows/System32/drivers/etc/hosts.inf",
                 "[Version]\nSignature=$Chicago$\n[Which]\nis=shared\n");
    drive_.write("drive_c/Windows/System32/only64.dll", "not an image");
    nlohmann::json description = {{"system", {{"wow64", wow64}}}};
    machine_.emplace(description, drive_.path());
    HMODULE kernel32 = GetModuleHandleA("kernel32.dll");
    disable_ =
        installedapps_col::procedure<DisableFunction>(kernel32, "Wow64DisableWow64FsRedirection");
    revert_ =
        installedapps_col::procedure<RevertFunction>(kernel32, "Wow64RevertWow64FsRedirection");
    ASSERT_TRUE(disable_ && revert_);
  }

  TempDirectory drive_;
  std::optional<CurrentMachine> machine_;
  DisableFunction disable_ = nullptr;
  RevertFunction revert_ = nullptr;
};

// Which copy of an INF file the calling thread opens.
std::string whichCopy(const char* path) {
  HINF inf = SetupOpenInfFileA(path, nullptr, INF_STYLE_WIN4, nullptr);
  char text[64] = "<none>";
  SetupGetLineTextA(nullptr, inf, "Which", "is", text, sizeof text, nullptr);
  SetupCloseInfFile(inf);
  return text;
}

// ERROR_RESOURCE_DATA_NOT_FOUND when the file (no image) is found, ERROR_FILE_NOT_FOUND when
// it is not.
DWORD versionError(const char* path) {
  GetFileVersionInfoSizeA(path, nullptr);
  return GetLastError();
}

TEST_F(FsRedirection, FailsInA64BitProcess) {
  makeMachine(false);
  PVOID old = &old;
  EXPECT_FALSE(disable_(&old));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
  EXPECT_EQ(old, &old);
  EXPECT_FALSE(revert_(nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
  EXPECT_EQ(whichCopy(kSystem32Copy), "System32");
}

TEST_F(FsRedirection, SendsSystem32ToSysWow64UntilTheThreadTurnsItOff) {
  makeMachine(true);
  EXPECT_EQ(whichCopy(kSystem32Copy), "SysWOW64");
  EXPECT_EQ(whichCopy("c:\\WINDOWS\\system32\\..\\System32\\Setup\\WHICH.INF"), "SysWOW64");
  EXPECT_EQ(whichCopy("C:\\Windows\\System32\\drivers\\etc\\hosts.inf"), "shared");
  EXPECT_EQ(versionError("C:\\Windows\\System32\\only64.dll"),
            static_cast<DWORD>(ERROR_FILE_NOT_FOUND));

  PVOID outer = &outer;
  ASSERT_TRUE(disable_(&outer));
  EXPECT_EQ(outer, nullptr);
  EXPECT_EQ(whichCopy(kSystem32Copy), "System32");
  EXPECT_EQ(versionError("C:\\Windows\\System32\\only64.dll"),
            static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
  std::string otherThread;
  std::thread([&] { otherThread = whichCopy(kSystem32Copy); }).join();
  EXPECT_EQ(otherThread, "SysWOW64");

  PVOID inner = nullptr;
  ASSERT_TRUE(disable_(&inner));
  EXPECT_NE(inner, nullptr);
  ASSERT_TRUE(revert_(inner));
  EXPECT_EQ(whichCopy(kSystem32Copy), "System32");
  ASSERT_TRUE(revert_(outer));
  EXPECT_EQ(whichCopy(kSystem32Copy), "SysWOW64");

  EXPECT_FALSE(disable_(nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOACCESS));
}

TEST(FsRedirectionFaults, FollowTheMachine) {
  CurrentMachine machine(nlohmann::json::parse(
      R"({"system": {"wow64": true}, "fail": {"Wow64DisableWow64FsRedirection": 0}})"));
  PVOID old = nullptr;
  EXPECT_FALSE(Wow64DisableWow64FsRedirection(&old));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  EXPECT_TRUE(Wow64RevertWow64FsRedirection(nullptr));
}

}  // namespace
