#include "winapi/include/setupapi.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_machine.h"
#include "winapi/include/windows.h"

namespace {

std::string fixture(const std::string& name) {
  std::ifstream in(std::string(VRX_INF_FIXTURES) + "/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// A machine whose INF directory holds the fixtures, spelt in other cases than the callers use.
class SetupApi : public ::testing::Test {
 protected:
  SetupApi() {
    drive_.write("drive_c/WINDOWS/INF/SYSOC.INF", fixture("sysoc.inf"));
    drive_.write("drive_c/WINDOWS/INF/games.inf", fixture("games.inf"));
    drive_.write("drive_c/WINDOWS/INF/unicode.inf", fixture("unicode.inf"));
    drive_.write("drive_c/WINDOWS/System32/legacy.inf", "[Version]\nSignature=$Chicago$\n");
    drive_.write("drive_c/WINDOWS/INF/bad.inf",
                 "[Version]\r\nSignature=\"$Chicago$\"\r\n[Broken\r\n");
    drive_.write("drive_c/WINDOWS/INF/old.inf", "[Version]\nSignature=\"$Windows 3.1$\"\n");
  }

  HINF open(const char* name, DWORD style = INF_STYLE_WIN4, const char* infClass = nullptr) {
    return SetupOpenInfFileA(name, infClass, style, nullptr);
  }

  TempDirectory drive_;
  CurrentMachine machine_{
      nlohmann::json::parse(R"({"system": {"windowsDirectory": "C:\\Windows"}})"), drive_.path()};
};

// The text of field `index`, or "<none>" when the call fails.
std::string field(INFCONTEXT& context, DWORD index) {
  char buffer[256];
  return SetupGetStringFieldA(&context, index, buffer, sizeof buffer, nullptr) ? buffer : "<none>";
}

std::string lineText(HINF inf, const char* section, const char* key) {
  char buffer[256];
  return SetupGetLineTextA(nullptr, inf, section, key, buffer, sizeof buffer, nullptr) ? buffer
                                                                                       : "<none>";
}

TEST_F(SetupApi, OpensBareNamesFromTheInfThenTheSystemDirectory) {
  const char* found[] = {"sysoc.inf", "C:\\windows\\inf\\GAMES.INF", "legacy.inf",
                         "\\Windows/inf/./games.inf"};
  for (const char* name : found) {
    HINF inf = open(name);
    EXPECT_NE(inf, INVALID_HANDLE_VALUE) << name;
    SetupCloseInfFile(inf);
  }
  const std::pair<const char*, DWORD> missing[] = {
      {"nosuch.inf", ERROR_FILE_NOT_FOUND},
      {"C:\\nodir\\x.inf", ERROR_PATH_NOT_FOUND},
      {"C:\\Windows\\inf", ERROR_ACCESS_DENIED},
      {nullptr, ERROR_INVALID_PARAMETER},
  };
  for (const auto& [name, error] : missing) {
    EXPECT_EQ(open(name), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), error) << (name ? name : "null");
  }
}

TEST_F(SetupApi, ReportsSyntaxStyleAndClassAsWindows) {
  UINT line = 77;
  EXPECT_EQ(SetupOpenInfFileA("bad.inf", nullptr, INF_STYLE_WIN4, &line), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_BAD_SECTION_NAME_LINE);
  EXPECT_EQ(line, 3u);

  line = 77;
  EXPECT_EQ(SetupOpenInfFileA("old.inf", nullptr, INF_STYLE_WIN4, &line), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_WRONG_INF_STYLE);
  EXPECT_EQ(line, 0u);
  EXPECT_EQ(open("old.inf", INF_STYLE_OLDNT | INF_STYLE_WIN4), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_WRONG_INF_STYLE);
  HINF old = open("old.inf", INF_STYLE_OLDNT);
  EXPECT_NE(old, INVALID_HANDLE_VALUE);
  SetupCloseInfFile(old);

  HINF games = open("games.inf", INF_STYLE_WIN4, "system");
  EXPECT_NE(games, INVALID_HANDLE_VALUE);
  SetupCloseInfFile(games);
  EXPECT_EQ(open("games.inf", INF_STYLE_WIN4, "Net"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_CLASS_MISMATCH);
}

// The walk of sysoc.inf: fields 4, 3 and 1 of each line of [Components], buffers of 256.
TEST_F(SetupApi, ReadsComponentFieldsByIndex) {
  HINF inf = open("sysoc.inf");
  INFCONTEXT context;
  ASSERT_TRUE(SetupFindFirstLineA(inf, "components", nullptr, &context));
  LONG count = SetupGetLineCountA(inf, "COMPONENTS");
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  std::vector<std::string> rows;
  for (LONG i = 0; i < count; ++i) {
    ASSERT_TRUE(SetupGetLineByIndexA(inf, "Components", i, &context));
    rows.push_back(field(context, 0) + "|" + field(context, 4) + "|" + field(context, 3) + "|" +
                   field(context, 1));
  }
  EXPECT_EQ(rows, (std::vector<std::string>{
                      "NtComponents|4||ntoc.dll", "Fax||fxsocm.inf|fxsocm.dll",
                      "IEAccess|HIDE|ieaccess.inf|ocgen.dll", "Games||games.inf|ocgen.dll"}));
  // A field the line does not have: FALSE, and the last error is left alone.
  SetLastError(1234);
  EXPECT_EQ(field(context, 6), "<none>");
  EXPECT_EQ(GetLastError(), 1234u);
  EXPECT_EQ(lineText(inf, "Global", "windowtitle"), "Windows Components Wizard");
  SetupCloseInfFile(inf);
}

TEST_F(SetupApi, GivesLineTextWithSubstitutions) {
  HINF inf = open("games.inf");
  INFCONTEXT context;
  std::vector<std::string> names;
  for (DWORD i = 0; SetupGetLineByIndexA(inf, "optional components", i, &context); ++i) {
    char text[256];
    ASSERT_TRUE(SetupGetLineTextA(&context, nullptr, nullptr, nullptr, text, sizeof text, nullptr));
    names.push_back(std::string(text) + "=" + field(context, 0) + "=" + field(context, 1));
  }
  // A line without '=' is its own key and first field.
  EXPECT_EQ(names, (std::vector<std::string>{"games=games=games", "freecell=freecell=freecell",
                                             "pinball=pinball=pinball"}));
  EXPECT_EQ(lineText(inf, "games", "tip"), "Includes Windows games");
  EXPECT_EQ(lineText(inf, "games", "IconIndex"), "57");  // from the second [GAMES]
  EXPECT_EQ(lineText(inf, "freecell", "Tip"), "Solitaire, 100% winnable");
  EXPECT_EQ(lineText(inf, "pinball", "tip"),
            "Plays \"3D Pinball\"; flippers, bumpers,and a %table%");
  ASSERT_TRUE(SetupFindFirstLineA(inf, "pinball", "OptionDesc", &context));
  EXPECT_EQ(field(context, 0), "OptionDesc");
  EXPECT_EQ(field(context, 1), "Pinball");
  SetupCloseInfFile(inf);
}

TEST_F(SetupApi, SizesBuffersAsWindows) {
  HINF inf = open("games.inf");
  INFCONTEXT context;
  ASSERT_TRUE(SetupFindFirstLineA(inf, "games", "OptionDesc", &context));
  char buffer[8];
  std::memset(buffer, '#', sizeof buffer);
  DWORD required = 0;
  EXPECT_FALSE(SetupGetStringFieldA(&context, 1, buffer, 5, &required));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(required, 6u);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_TRUE(SetupGetStringFieldA(&context, 1, nullptr, 0, &required));
  EXPECT_EQ(required, 6u);
  EXPECT_TRUE(SetupGetStringFieldA(&context, 1, buffer, 6, &required));
  EXPECT_STREQ(buffer, "Games");
  EXPECT_EQ(buffer[6], '#');

  std::memset(buffer, '#', sizeof buffer);
  EXPECT_FALSE(SetupGetLineTextA(&context, nullptr, nullptr, nullptr, buffer, 5, &required));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(required, 6u);
  EXPECT_EQ(buffer[0], '#');
  SetupCloseInfFile(inf);
}

TEST_F(SetupApi, TellsMissingSectionsLinesAndHandlesApart) {
  HINF inf = open("games.inf");
  INFCONTEXT context{nullptr, nullptr, 99, 99};
  EXPECT_EQ(SetupGetLineCountA(inf, "nosuch"), -1);
  EXPECT_EQ(GetLastError(), ERROR_SECTION_NOT_FOUND);
  EXPECT_FALSE(SetupFindFirstLineA(inf, "nosuch", nullptr, &context));
  EXPECT_EQ(GetLastError(), ERROR_LINE_NOT_FOUND);
  EXPECT_FALSE(SetupFindFirstLineA(inf, "games", "nokey", &context));
  EXPECT_EQ(GetLastError(), ERROR_LINE_NOT_FOUND);
  EXPECT_FALSE(SetupGetLineByIndexA(inf, "games", 3, &context));
  EXPECT_EQ(GetLastError(), ERROR_LINE_NOT_FOUND);
  EXPECT_EQ(context.Section, 99u);
  EXPECT_EQ(lineText(inf, "games", "nokey"), "<none>");

  ASSERT_TRUE(SetupGetLineByIndexA(inf, "games", 2, &context));
  SetupCloseInfFile(inf);
  EXPECT_EQ(field(context, 1), "<none>");
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_EQ(SetupGetLineCountA(inf, "games"), -1);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  SetupCloseInfFile(inf);  // a stale handle is ignored
}

TEST_F(SetupApi, GivesUnicodeFilesInTheAnsiCodePage) {
  HINF inf = open("unicode.inf");
  EXPECT_EQ(lineText(inf, "access", "OptionDesc"), "Accessibilit\xE9");
  EXPECT_EQ(lineText(inf, "access", "Tip"), "Outils d'acc\xE8s \x97 ??");
  SetupCloseInfFile(inf);
}

TEST(SetupApiFaults, FollowTheMachine) {
  CurrentMachine machine(nlohmann::json::parse(
      R"({"fail": {"SetupOpenInfFileA": -1}, "missing": ["setupapi.dll!SetupGetLineTextA"]})"));
  EXPECT_EQ(SetupOpenInfFileA("sysoc.inf", nullptr, INF_STYLE_WIN4, nullptr), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
  HMODULE setupapi = LoadLibraryA("setupapi.dll");
  EXPECT_EQ(GetProcAddress(setupapi, "SetupGetLineTextA"), nullptr);
  EXPECT_NE(GetProcAddress(setupapi, "SetupGetStringFieldA"), nullptr);
  FreeLibrary(setupapi);
}

}  // namespace
