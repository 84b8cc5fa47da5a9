// The INF reader is a small state machine: one handler per state, each reading from a
// position and returning where the next state goes on (the shape of SetupAPI's own reader).
#include "winapi/formats/inf_parser.h"

#include "winapi/include/setupapi.h"
#include "winapi/include/windows.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

constexpr std::string_view kStringsSection = "Strings";

std::string utf16Text(std::string_view bytes, unsigned) {
  return utf16leToUtf8(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size() / 2);
}

std::string utf8Text(std::string_view bytes, unsigned) { return codePageToUtf8(65001, bytes); }

std::string ansiText(std::string_view bytes, unsigned ansiCodePage) {
  return codePageToUtf8(ansiCodePage, bytes);
}

// Tried in order; the last one, without a mark, always matches.
struct Encoding {
  std::string_view byteOrderMark;
  std::string (*toUtf8)(std::string_view bytes, unsigned ansiCodePage);
};

const Encoding kEncodings[] = {
    {"\xFF\xFE", utf16Text},
    {"\xEF\xBB\xBF", utf8Text},
    {"", ansiText},
};

std::string textOf(std::string_view bytes, unsigned ansiCodePage) {
  for (const Encoding& encoding : kEncodings) {
    if (bytes.substr(0, encoding.byteOrderMark.size()) != encoding.byteOrderMark) continue;
    std::string text = encoding.toUtf8(bytes.substr(encoding.byteOrderMark.size()), ansiCodePage);
    return text.substr(0, text.find('\x1A'));
  }
  return "";
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::size_t characterCount(std::string_view utf8) {
  std::size_t count = 0;
  for (char c : utf8)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++count;
  return count;
}

}  // namespace

class InfParser {
 public:
  InfParser(std::string_view text, const std::string& fileName, InfFile& file)
      : text_(text), fileName_(fileName), file_(file) {}

  void run() {
    std::size_t position = 0;
    while (state_ != kDone) position = (this->*kHandlers[state_])(position);
    if (strayLine_ && !file_.sectionIndex(kStringsSection))
      throw errorAt(ERROR_EXPECTED_SECTION_NAME, strayLine_, "text before the first [section]");
  }

 private:
  enum State {
    kLineStart,
    kSectionName,
    kComment,
    kFieldStart,
    kValue,
    kQuotes,
    kBackslash,
    kDone
  };
  using Handler = std::size_t (InfParser::*)(std::size_t);
  static const Handler kHandlers[];

  bool atEnd(std::size_t p) const { return p >= text_.size(); }
  bool atLineEnd(std::size_t p) const { return atEnd(p) || text_[p] == '\n'; }

  // Between lines: blank lines, comments, section headers, or the start of a line.
  std::size_t lineStart(std::size_t p) {
    for (; !atEnd(p); ++p) {
      char c = text_[p];
      if (c == '\n') {
        ++line_;
      } else if (c == ';') {
        return next(kComment, p + 1);
      } else if (c == '[') {
        return next(kSectionName, p + 1);
      } else if (!isBlank(c)) {
        if (!section_) {
          // Lines before the first section are an error only in a file without [Strings].
          if (!strayLine_) strayLine_ = line_;
          return next(kComment, p);
        }
        return next(kFieldStart, p);
      }
    }
    return next(kDone, p);
  }

  std::size_t sectionName(std::size_t p) {
    std::size_t start = p;
    for (; !atLineEnd(p); ++p) {
      if (text_[p] != ']') continue;
      std::string name(text_.substr(start, p - start));
      if (characterCount(name) > kMaxSectionNameLength)
        fail(ERROR_SECTION_NAME_TOO_LONG, "section name longer than 255 characters");
      section_ = file_.openSection(name);
      return next(kComment, p + 1);  // the rest of the line is ignored
    }
    fail(ERROR_BAD_SECTION_NAME_LINE, "section name without a closing ']'");
  }

  std::size_t comment(std::size_t p) {
    while (!atLineEnd(p)) ++p;
    return next(kLineStart, p);
  }

  std::size_t fieldStart(std::size_t p) {
    while (!atLineEnd(p) && isBlank(text_[p])) ++p;
    return next(kValue, p);
  }

  std::size_t value(std::size_t p) {
    for (; !atLineEnd(p); ++p) {
      char c = text_[p];
      if (c == '"') return next(kQuotes, p + 1);
      if (c == '\\') return next(kBackslash, p + 1);
      if (c == ',') {
        endField();
        return next(kFieldStart, p + 1);
      }
      if (c == ';') {
        endLine();
        return next(kComment, p + 1);
      }
      if (c == '=' && current_.fields.empty() && !current_.key) {
        current_.key = takeToken();
        return next(kFieldStart, p + 1);
      }
      if (isBlank(c))
        token_ += c;  // kept only when more text follows in this field
      else
        keep(c);
    }
    endLine();
    return next(kLineStart, p);
  }

  std::size_t quotes(std::size_t p) {
    for (; !atLineEnd(p); ++p) {
      if (text_[p] != '"') {
        keep(text_[p]);
      } else if (p + 1 < text_.size() && text_[p + 1] == '"') {
        keep('"');
        ++p;
      } else {
        return next(kValue, p + 1);
      }
    }
    return next(kValue, p);  // an unclosed quote ends with its line
  }

  // After a '\': only blanks, more backslashes or a comment up to the end of the line make it
  // a continuation, which joins the next line without the blanks around the break.
  std::size_t backslash(std::size_t p) {
    std::size_t q = p;
    while (!atLineEnd(q) && (isBlank(text_[q]) || text_[q] == '\\')) ++q;
    if (!atLineEnd(q) && text_[q] == ';')
      while (!atLineEnd(q)) ++q;
    if (atEnd(q)) return next(kValue, q);
    if (text_[q] == '\n') {
      ++line_;
      token_.resize(kept_);
      return next(kFieldStart, q + 1);
    }
    keep('\\');
    return next(kValue, p);
  }

  std::size_t next(State state, std::size_t p) {
    state_ = state;
    return p;
  }

  void keep(char c) {
    token_ += c;
    kept_ = token_.size();
  }

  std::string takeToken() {
    token_.resize(kept_);
    std::string token = std::move(token_);
    token_.clear();
    kept_ = 0;
    return token;
  }

  void endField() { current_.fields.push_back(takeToken()); }

  void endLine() {
    endField();
    if (!current_.key && current_.fields.size() == 1) current_.key = current_.fields[0];
    file_.sections_[*section_].lines.push_back(std::move(current_));
    current_ = InfLine();
  }

  InfError errorAt(std::uint32_t code, unsigned line, const char* problem) const {
    return InfError(code, line, fileName_ + ": line " + std::to_string(line) + ": " + problem);
  }

  [[noreturn]] void fail(std::uint32_t code, const char* problem) const {
    throw errorAt(code, line_, problem);
  }

  std::string_view text_;
  const std::string& fileName_;
  InfFile& file_;
  State state_ = kLineStart;
  unsigned line_ = 1;
  unsigned strayLine_ = 0;
  std::optional<std::size_t> section_;
  InfLine current_;
  std::string token_;     // the field being read
  std::size_t kept_ = 0;  // its length without the blanks at its end
};

const InfParser::Handler InfParser::kHandlers[] = {
    &InfParser::lineStart, &InfParser::sectionName, &InfParser::comment,   &InfParser::fieldStart,
    &InfParser::value,     &InfParser::quotes,      &InfParser::backslash,
};

std::optional<std::size_t> InfSection::findKey(std::string_view key) const {
  for (std::size_t i = 0; i < lines.size(); ++i)
    if (lines[i].key && equalsIgnoringCase(*lines[i].key, key)) return i;
  return std::nullopt;
}

InfFile InfFile::parse(std::string_view bytes, unsigned ansiCodePage, const std::string& fileName) {
  InfFile file;
  std::string text = textOf(bytes, ansiCodePage);
  InfParser(text, fileName, file).run();
  return file;
}

std::optional<std::size_t> InfFile::sectionIndex(std::string_view name) const {
  auto found = index_.find(name);
  return found == index_.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

std::size_t InfFile::openSection(const std::string& name) {
  auto [found, added] = index_.emplace(name, sections_.size());
  if (added) sections_.push_back(InfSection{name, {}});
  return found->second;
}

std::string InfFile::substitute(std::string_view text) const {
  std::optional<std::size_t> strings = sectionIndex(kStringsSection);
  std::string result;
  std::size_t position = 0;
  for (;;) {
    std::size_t open = text.find('%', position);
    std::size_t close = open == std::string_view::npos ? open : text.find('%', open + 1);
    if (close == std::string_view::npos) break;
    result.append(text.substr(position, open - position));
    std::string_view name = text.substr(open + 1, close - open - 1);
    std::optional<std::size_t> line =
        name.empty() || !strings ? std::nullopt : sections_[*strings].findKey(name);
    if (name.empty())
      result += '%';
    else if (line)
      result += sections_[*strings].lines[*line].fields.front();
    else
      result.append(text.substr(open, close - open + 1));
    position = close + 1;
  }
  result.append(text.substr(position));
  return result;
}

}  // namespace winapi
