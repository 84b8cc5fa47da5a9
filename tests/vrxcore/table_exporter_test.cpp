#include "vrxcore/table_exporter.h"

#include <gtest/gtest.h>

#include "tests/vrxcore/export_test_instances.h"
#include "tests/vrxcore/exported_text.h"

namespace NZARVEK20 {
namespace {

// An empty CreationClassName, as some collectors leave their keys.
void commitSystem(TRepositoryNamespace& ns, const std::string& name, unsigned number) {
  auto system = ns.GetClass("T_System", {})->AllocateInstance({});
  system->SetPropertyValue("CreationClassName", TCIMValue(""), {});
  system->SetPropertyValue("Name", TCIMValue(name), {});
  system->SetPropertyValue("Number", TCIMValue(number), {});
  system->Commit({});
}

TEST(TableExporter, OneSectionPerClassWithSharedKeysAboveAlignedRows) {
  auto ns = makeTestNamespace();
  commitSystem(*ns, "plain", 1);
  auto user = ns->GetClass("T_UserSetting", {})->AllocateInstance({});
  user->SetPropertyValue("SettingID", TCIMValue("TEMP"), {});
  user->SetPropertyValue("SettingValue", TCIMValue("C:\\Temp"), {});
  user->Commit({});
  // Two display columns a character; a combining mark takes none.
  commitSystem(*ns, "\xE6\x97\xA5\xE6\x9C\xAC", 22);
  commitSystem(*ns, "e\xCC\x81t\xC3\xA9", 333);
  commitSystem(*ns, std::string(45, 'x'), 4);
  commitSystem(*ns, std::string(kMaxCellWidth, 'y'), 5);
  commitSystem(*ns, std::string(kMaxCellWidth + 1, 'z'), 6);
  auto changed = ns->GetClass("T_SystemSetting", {})->AllocateInstance({});
  changed->SetPropertyValue("SettingID", TCIMValue("TZ"), {});
  changed->SetPropertyValue("Changed", TCIMValue(TCIMDateTime(2026, 11, 2, 9, 5, 30, 5, -330)), {});
  changed->Commit({});
  EXPECT_EQ(exportedText(ExportTable, "root/test", ns->GetInstances(), sameText),
            "T_System: 6 instances\n"
            "  CreationClassName = \"\"\n"
            "  Name                                      Number\n"
            "  ----------------------------------------  ------\n"
            "  plain                                     1\n"
            "  \xE6\x97\xA5\xE6\x9C\xAC                                      22\n"
            "  e\xCC\x81t\xC3\xA9                                       333\n"
            "  " +
                std::string(39, 'x') +
                "\xE2\x80\xA6  4\n"
                "  " +
                std::string(kMaxCellWidth, 'y') + "  5\n  " + std::string(kMaxCellWidth - 1, 'z') +
                "\xE2\x80\xA6  6\n"
                "\n"
                "T_UserSetting: 1 instance\n"
                "  SettingID  SettingValue\n"
                "  ---------  ------------\n"
                "  TEMP       C:\\Temp\n"
                "\n"
                "T_SystemSetting: 1 instance\n"
                "  SettingID  SettingValue  Changed\n"
                "  ---------  ------------  --------------------------\n"
                "  TZ         unset         2026-11-02 09:05:30 -05:30\n");
}

TEST(TableExporter, ReferencesShowTheirTellingKeysAndTextIsMadeSafe) {
  auto ns = makeExportNamespace();
  const std::string table =
      exportedText(ExportTable, "root/test", ns->GetInstances(), latin1Encoder);
  // A single row keeps every key as a column; telling columns are the
  // first set ones, at most three.
  EXPECT_NE(table.find("T_System: 1 instance\n"
                       "  CreationClassName  Name    Number      Flag\n"
                       "  -----------------  ------  ----------  -----\n"
                       "  T_System           WKS<&>  4000000000  false\n"),
            std::string::npos)
      << table;
  EXPECT_NE(table.find("  SettingID                  Weight  Changed      Tags\n"),
            std::string::npos)
      << table;
  // Controls (tab, line feed, 0x01, NUL) show as U+FFFD; the row stays one line.
  const std::string r = "\xEF\xBF\xBD";
  EXPECT_NE(table.find("  caf\xC3\xA9 \"q\" a\\b" + r + "tab" + r + "line" + r + "|" + r +
                       "|  7       3d 02:01:00  a; b,c\n"),
            std::string::npos);
  EXPECT_NE(table.find("  Element                       Setting\n"
                       "  ----------------------------  ----------------------------------------\n"
                       "  T_System(WKS<&>, 4000000000)  T_SystemSetting(caf\xC3\xA9 \"q\" a\\b" +
                       r + "tab" + r + "line" + r + "|\xE2\x80\xA6\n"),
            std::string::npos);
  EXPECT_EQ(exportedText(ExportTable, "root/test", {}, sameText), "");
}

}  // namespace
}  // namespace NZARVEK20
