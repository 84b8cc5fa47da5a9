// INF files as SetupAPI reads them: [sections] of lines, each line an optional key before
// '=' and comma-separated fields. Comments start with ';'; a '\' at the end of a line
// continues it; "quoted text" keeps commas, ';' and blanks ("" is a quote); blanks around
// fields are dropped. A section that appears again adds its lines to the first one. Names of
// sections and keys match without regard to case. Text is kept in UTF-8.
#ifndef VRX_WINAPI_INF_PARSER_H
#define VRX_WINAPI_INF_PARSER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "winapi/support/text.h"

namespace winapi {

constexpr std::size_t kMaxSectionNameLength = 255;  // characters

// A syntax error: code() is ERROR_EXPECTED_SECTION_NAME, ERROR_BAD_SECTION_NAME_LINE or
// ERROR_SECTION_NAME_TOO_LONG, line() 1-based, as SetupOpenInfFile reports them; what() is
// "file: line N: problem".
class InfError : public std::runtime_error {
 public:
  InfError(std::uint32_t code, unsigned line, const std::string& message)
      : std::runtime_error(message), code_(code), line_(line) {}
  std::uint32_t code() const { return code_; }
  unsigned line() const { return line_; }

 private:
  std::uint32_t code_;
  unsigned line_;
};

struct InfLine {
  // The text before '='. A line without '=' that has one field has that field as its key too.
  std::optional<std::string> key;
  std::vector<std::string> fields;  // fields 1..n, without quotes
};

struct InfSection {
  std::string name;
  std::vector<InfLine> lines;

  // The first line whose key is `key`, without regard to case.
  std::optional<std::size_t> findKey(std::string_view key) const;
};

class InfFile {
 public:
  // `bytes` are UTF-16LE after a byte-order mark, UTF-8 after one, else ANSI text in
  // `ansiCodePage`; the text ends at the first Ctrl-Z. Throws InfError naming `fileName`.
  static InfFile parse(std::string_view bytes, unsigned ansiCodePage, const std::string& fileName);

  const std::vector<InfSection>& sections() const { return sections_; }
  std::optional<std::size_t> sectionIndex(std::string_view name) const;
  // `text` with each %name% replaced by the first field of line `name` of [Strings] (names
  // without regard to case), %% by %; a %name% that [Strings] does not define stays as it is.
  std::string substitute(std::string_view text) const;

 private:
  friend class InfParser;
  // The section `name`, added at the end when the file has none of that name yet.
  std::size_t openSection(const std::string& name);

  std::vector<InfSection> sections_;
  std::map<std::string, std::size_t, LessIgnoringCase> index_;
};

}  // namespace winapi

#endif
