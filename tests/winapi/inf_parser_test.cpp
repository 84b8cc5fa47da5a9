#include "winapi/formats/inf_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "winapi/include/setupapi.h"
#include "winapi/include/windows.h"

namespace {

using winapi::InfError;
using winapi::InfFile;
using winapi::InfLine;

InfFile parse(const std::string& text, unsigned codePage = 1252) {
  return InfFile::parse(text, codePage, "test.inf");
}

const InfLine& lineOf(const InfFile& file, const char* section, std::size_t index) {
  return file.sections().at(file.sectionIndex(section).value()).lines.at(index);
}

TEST(InfParser, RejectsMalformedFilesNamingFileAndLine) {
  const std::string longName(256, 'n');
  const struct {
    std::string text;
    DWORD code;
    unsigned line;
    std::string message;
  } cases[] = {
      {"[Version]\r\nSignature=x\r\n[Components\r\nk=v\r\n", ERROR_BAD_SECTION_NAME_LINE, 3,
       "test.inf: line 3: section name without a closing ']'"},
      {"[a]\nk = v \\\n  w\n[b", ERROR_BAD_SECTION_NAME_LINE, 4,
       "test.inf: line 4: section name without a closing ']'"},
      {"[ok]\n[" + longName + "]\n", ERROR_SECTION_NAME_TOO_LONG, 2,
       "test.inf: line 2: section name longer than 255 characters"},
      {"; comment\n\n  stray = line\n[Version]\n", ERROR_EXPECTED_SECTION_NAME, 3,
       "test.inf: line 3: text before the first [section]"},
      // Lines before the first section are forgiven only in a file that has [Strings].
      {"a\nb\n[Strings\n", ERROR_BAD_SECTION_NAME_LINE, 3,
       "test.inf: line 3: section name without a closing ']'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    try {
      parse(c.text);
      ADD_FAILURE() << "parsed";
    } catch (const InfError& error) {
      EXPECT_EQ(error.code(), c.code);
      EXPECT_EQ(error.line(), c.line);
      EXPECT_EQ(error.what(), c.message);
    }
  }
}

TEST(InfParser, AcceptsWhatSetupApiAccepts) {
  const std::string longestName(255, 'n');
  const std::string texts[] = {
      "garbage before\n[Strings]\nx=1\n",  // tolerated in a file with [Strings]
      "[" + longestName + "]\n",
      "[]\n]\n",
      "[a] anything after the bracket\nk=\"unclosed, quote\n",
      "",
  };
  for (const std::string& text : texts) EXPECT_NO_THROW(parse(text)) << text;
  EXPECT_EQ(lineOf(parse(texts[3]), "a", 0).fields, (std::vector<std::string>{"unclosed, quote"}));
}

TEST(InfParser, SplitsLinesIntoKeysAndFields) {
  InfFile file = parse(
      "[S]\r\n"
      "key = a , \"b, c\" ,, \"x\"\"y\" z ;comment\r\n"
      "plain line\r\n"
      "one, two\r\n"
      "\"quoted = key\" = v\r\n"
      "k2 = first \\  ; a comment does not stop the continuation\r\n"
      "   second\r\n"
      "a = b = c\r\n"
      "k3 =\r\n"
      "path = C:\\dir\\file\r\n");
  using Fields = std::vector<std::string>;
  const struct {
    const char* key;  // nullptr: no key
    Fields fields;
  } expected[] = {
      {"key", {"a", "b, c", "", "x\"y z"}},
      {"plain line", {"plain line"}},
      {nullptr, {"one", "two"}},
      {"quoted = key", {"v"}},
      {"k2", {"firstsecond"}},
      {"a", {"b = c"}},
      {"k3", {""}},
      {"path", {"C:\\dir\\file"}},
  };
  const auto& lines = file.sections()[0].lines;
  ASSERT_EQ(lines.size(), std::size(expected));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(lines[i].key.value_or("<none>"), expected[i].key ? expected[i].key : "<none>");
    EXPECT_EQ(lines[i].fields, expected[i].fields);
  }
}

TEST(InfParser, MergesRepeatedSectionsWithoutRegardToCase) {
  InfFile file = parse("[A]\nx=1\n[b]\ny=2\n[a]\nz=3\n");
  ASSERT_EQ(file.sections().size(), 2u);
  EXPECT_EQ(file.sectionIndex("a"), file.sectionIndex("A"));
  const auto& merged = file.sections().at(file.sectionIndex("a").value());
  EXPECT_EQ(merged.name, "A");
  ASSERT_EQ(merged.lines.size(), 2u);
  EXPECT_EQ(merged.lines[1].key.value_or("<none>"), "z");
  EXPECT_EQ(merged.findKey("Z"), 1u);
}

TEST(InfParser, ReadsUtf16Utf8AndAnsiText) {
  // "[S]\nk=é日" in UTF-16LE after its byte-order mark.
  const std::string utf16("\xFF\xFE[\0S\0]\0\n\0k\0=\0\xE9\0\xE5\x65", 18);
  EXPECT_EQ(lineOf(parse(utf16), "S", 0).fields[0], "\xC3\xA9\xE6\x97\xA5");
  EXPECT_EQ(lineOf(parse("\xEF\xBB\xBF[S]\nk=\xC3\xA9"), "S", 0).fields[0], "\xC3\xA9");
  EXPECT_EQ(lineOf(parse("[S]\nk=\xE9"), "S", 0).fields[0], "\xC3\xA9");
  EXPECT_EQ(lineOf(parse("[S]\nk=\xE9", 1251), "S", 0).fields[0], "\xD0\xB9");
  // Ctrl-Z ends the text.
  EXPECT_FALSE(parse("[S]\nk=v\x1A\n[T]\n").sectionIndex("T"));
}

TEST(InfParser, SubstitutesStringsWithoutRegardToCase) {
  InfFile file = parse("[S]\n[Strings]\nName = \"Value, with comma\"\nempty =\n");
  EXPECT_EQ(file.substitute("%NAME% and %%, %undefined%, %empty%|, 50% off"),
            "Value, with comma and %, %undefined%, |, 50% off");
  EXPECT_EQ(parse("[S]\n").substitute("%name%"), "%name%");
}

}  // namespace
