#include "frame/registry_reader.h"

#include <gtest/gtest.h>

#include "tests/frame/plugin_test_support.h"

namespace installedapps_col {
namespace {

// Sub-key names are read into 4096 bytes. The longest name a registry holds is 255 characters;
// in a double-byte code page that is 510 bytes, which come through whole, in enumeration order.
TEST(RegistryReader, TheLongestSubKeyNamesComeThroughWhole) {
  std::string wideUtf8, wideShiftJis;
  for (int i = 0; i < 255; ++i) {
    wideUtf8 += "\xE6\x97\xA5";  // U+65E5, two bytes in code page 932
    wideShiftJis += "\x93\xFA";
  }
  const std::string ascii = "b" + std::string(254, 'x');
  std::string reg;
  for (const std::string& name : {std::string("a"), ascii, wideUtf8})
    reg += "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wide\\" + name + "]\r\n\r\n";
  RegistryMachine machine(reg, {{"ansiCodePage", 932}});
  std::vector<std::string> keys{"kept"};
  RegistryReader().enumerateSubKeys(keys, "SOFTWARE\\Wide");
  EXPECT_EQ(keys, (std::vector<std::string>{"kept", "SOFTWARE\\Wide\\a", "SOFTWARE\\Wide\\" + ascii,
                                            "SOFTWARE\\Wide\\" + wideShiftJis}));
}

}  // namespace
}  // namespace installedapps_col
