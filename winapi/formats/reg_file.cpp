// Importing .reg files: one statement per line of the decoded text (reg_text.h) — [key],
// [-key], "name"=data, @=data — where a hex list may go on over lines ending in '\'.
#include "winapi/formats/reg_file.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "winapi/formats/reg_text.h"
#include "winapi/formats/registry_key_names.h"
#include "winapi/include/windows.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/errors.h"
#include "winapi/support/little_endian.h"
#include "winapi/support/parallel.h"
#include "winapi/support/text.h"

namespace winapi {

namespace {

// Windows' own limits, which also bound what a hostile file can build.
constexpr std::size_t kMaxKeyName = 255;
constexpr std::size_t kMaxValueName = 16383;
constexpr std::size_t kMaxDepth = 512;

bool hasPrefix(std::wstring_view text, std::size_t at, std::wstring_view prefix) {
  return compareIgnoringCase(text.substr(at, prefix.size()), prefix) == 0;
}

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

void skipBlanks(std::wstring_view text, std::size_t& at) {
  while (at < text.size() && isBlank(text[at])) ++at;
}

int hexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

// One to `most` hex digits at `at`, which moves past them; nullopt for none or too many.
std::optional<std::uint32_t> hexNumber(std::wstring_view text, std::size_t& at, std::size_t most) {
  std::size_t start = at;
  std::uint32_t value = 0;
  while (at < text.size() && hexDigit(text[at]) >= 0 && at - start < most)
    value = value * 16 + static_cast<std::uint32_t>(hexDigit(text[at++]));
  if (at == start || (at < text.size() && hexDigit(text[at]) >= 0)) return std::nullopt;
  return value;
}

// The text of one statement: a line, and the lines its hex list goes on over, with where each
// piece came from, so that a message names the line and column of the problem. A statement of
// one line is read where the line is.
class Statement {
 public:
  Statement(std::wstring_view line, std::size_t number) : text_(line), first_{0, number, 0} {}

  std::wstring_view text() const { return text_; }

  void append(std::wstring_view text, std::size_t line, std::size_t column) {
    if (later_.empty()) joined_.assign(text_);
    later_.push_back({joined_.size(), line, column});
    joined_ += text;
    text_ = joined_;
  }
  // Drops the '\' (and blanks after it) that ends the text, when it ends so.
  bool dropContinuation() {
    std::size_t last = text_.find_last_not_of(kRegBlanks);
    if (last == std::wstring_view::npos || text_[last] != L'\\') return false;
    text_ = text_.substr(0, last);
    if (!later_.empty()) joined_.erase(last);
    return true;
  }
  // "line:column" of the character at `offset` (1-based, in characters).
  std::string placeOf(std::size_t offset) const {
    auto later = std::upper_bound(
        later_.begin(), later_.end(), offset,
        [](std::size_t at, const Piece& candidate) { return at < candidate.offset; });
    const Piece& piece = later == later_.begin() ? first_ : *std::prev(later);
    return std::to_string(piece.line) + ":" +
           std::to_string(piece.column + offset - piece.offset + 1);
  }

 private:
  struct Piece {
    std::size_t offset, line, column;
  };
  std::wstring_view text_;  // the line, or `joined_` once a piece has been appended
  std::wstring joined_;
  Piece first_;
  std::vector<Piece> later_;
};

class Parser {
 public:
  // Reads lines [first, end) of `text`; `first` is the line after the header or a key line.
  Parser(Registry& registry, const RegText& text, std::size_t first, std::size_t end,
         const std::string& file, unsigned ansiCodePage)
      : registry_(registry),
        text_(text),
        file_(file),
        ansiCodePage_(ansiCodePage),
        next_(first),
        end_(end) {}

  void run() {
    while (next_ < end_) {
      std::size_t number = next_ + 1;
      std::wstring_view line = text_.lines[next_++];
      std::size_t at = line.find_first_not_of(kRegBlanks);
      if (at == std::wstring_view::npos || line[at] == L';') continue;
      Statement statement(line, number);
      if (line[at] == L'[')
        keyLine(statement, at);
      else if (line[at] == L'"' || line[at] == L'@')
        valueLine(statement, at);
      else
        fail(statement, at, "expected [key], \"name\"=, @= or a ; comment");
    }
    if (key_) key_->shrinkToFit();
  }

 private:
  struct Target {
    Hive hive;
    RegistryPath path;
  };

  void keyLine(const Statement& statement, std::size_t at) {
    std::wstring_view text = statement.text();
    std::size_t close = text.find_last_not_of(kRegBlanks);
    if (close == at || text[close] != L']')
      fail(statement, close + 1, "expected ']' at the end of the key");
    bool remove = text[at + 1] == L'-';
    Target target = keyPath(statement, at + (remove ? 2 : 1), close);
    keyDeleted_ = remove;
    if (key_) key_->shrinkToFit();
    key_ = remove ? nullptr : &makeKey(target);
    if (!remove) return;
    if (target.path.empty()) fail(statement, at + 2, "a root key cannot be deleted");
    made_.clear();
    RegistryPath parent(target.path.begin(), target.path.end() - 1);
    if (RegistryKey* key = registry_.root(target.hive).find(parent))
      key->removeSubKey(target.path.back());
  }

  // Regedit makes the keys on the way as well. A key mostly shares its parents with the key
  // before it, so the walk starts below the part of the path the two have in common.
  RegistryKey& makeKey(const Target& target) {
    std::size_t common = 0;
    if (madeHive_ == target.hive)
      while (common < std::min(made_.size(), target.path.size()) &&
             equalsIgnoringCase(made_[common]->name(), target.path[common]))
        ++common;
    made_.resize(common);
    madeHive_ = target.hive;
    RegistryKey* key = common ? made_.back() : &registry_.root(target.hive);
    for (std::size_t depth = common; depth < target.path.size(); ++depth) {
      key = &key->makeSubKey(target.path[depth]);
      made_.push_back(key);
    }
    return *key;
  }

  Target keyPath(const Statement& statement, std::size_t begin, std::size_t end) const {
    std::wstring_view text = statement.text();
    std::size_t slash = std::min(text.find(L'\\', begin), end);
    Target target = rootKey(statement, begin, text.substr(begin, slash - begin));
    while (slash < end) {
      std::size_t start = slash + 1;
      slash = std::min(text.find(L'\\', start), end);
      std::wstring_view name = text.substr(start, slash - start);
      if (name.empty()) fail(statement, start, "empty key name");
      if (name.size() > kMaxKeyName) fail(statement, start, "a key name is at most 255 characters");
      if (target.path.size() == kMaxDepth) fail(statement, start, "more than 512 levels of keys");
      target.path.emplace_back(name);
    }
    return target;
  }

  Target rootKey(const Statement& statement, std::size_t at, std::wstring_view name) const {
    const RootKey* root = findRootKey(name);
    if (!root) fail(statement, at, "unknown root key \"" + toUtf8(name) + "\"");
    if (!equalsIgnoringCase(name, root->name))
      fail(statement, at,
           "regedit does not accept the abbreviation " + toUtf8(name) + "; write " +
               toUtf8(root->name));
    if (!root->kept)
      fail(statement, at,
           "keys under " + toUtf8(name) +
               " are not kept for a machine; write them under HKEY_LOCAL_MACHINE or "
               "HKEY_CURRENT_USER");
    return {root->hive, root->below};
  }

  void valueLine(Statement& statement, std::size_t at) {
    if (!key_ && !keyDeleted_) fail(statement, at, "a value needs a [key] line before it");
    std::wstring_view text = statement.text();
    std::size_t nameStart = at;
    RegistryName name;
    if (text[at] == L'@') {
      ++at;
    } else {
      std::wstring_view spelled = quoted(statement, at);
      if (spelled.size() > kMaxValueName)
        fail(statement, nameStart, "a value name is at most 16383 characters");
      name = spelled;
    }
    skipBlanks(text, at);
    if (at == text.size() || text[at] != L'=')
      fail(statement, at, "expected '=' after the value name");
    skipBlanks(text, ++at);
    std::optional<RegistryValue> value = data(statement, at);
    // Values after [-key] are read and passed over, as regedit does.
    if (keyDeleted_) return;
    if (!value) {
      key_->removeValue(name);
      return;
    }
    value->name = name;
    key_->setValue(std::move(*value));
  }

  // The value after '=', nullopt for '-' (delete it).
  std::optional<RegistryValue> data(Statement& statement, std::size_t at) {
    std::wstring_view text = statement.text();
    if (at < text.size() && text[at] == L'-') {
      expectEnd(statement, at + 1);
      return std::nullopt;
    }
    if (at < text.size() && text[at] == L'"') {
      std::wstring_view string = quoted(statement, at);
      std::string bytes;
      bytes.reserve(2 * string.size() + 2);
      appendUtf16Bytes(bytes, string);
      bytes.append(2, '\0');
      expectEnd(statement, at);
      return RegistryValue{{}, REG_SZ, std::move(bytes)};
    }
    if (hasPrefix(text, at, L"dword:")) {
      std::size_t digits = at + 6;
      auto number = hexNumber(text, digits, 8);
      if (!number) fail(statement, at + 6, "expected 1 to 8 hex digits after dword:");
      expectEnd(statement, digits);
      std::string bytes(4, '\0');
      putLittleEndian(bytes, 0, *number, 4);
      return RegistryValue{{}, REG_DWORD, bytes};
    }
    if (hasPrefix(text, at, L"hex")) {
      std::uint32_t type = hexType(statement, at);
      return RegistryValue{{}, type, storedBytes(type, hexList(statement, at))};
    }
    fail(statement, at, "expected \"text\", dword:, hex:, hex(type): or - after '='");
  }

  // "hex:" is REG_BINARY, "hex(N):" type N; `at` moves past the ':'.
  std::uint32_t hexType(const Statement& statement, std::size_t& at) const {
    std::wstring_view text = statement.text();
    at += 3;
    std::uint32_t type = REG_BINARY;
    if (at < text.size() && text[at] == L'(') {
      std::size_t digits = ++at;
      auto number = hexNumber(text, at, 8);
      if (!number || at == text.size() || text[at] != L')')
        fail(statement, digits, "expected a hex type number and ')' after hex(");
      type = *number;
      ++at;
    }
    if (at == text.size() || text[at] != L':') fail(statement, at, "expected ':' after hex");
    ++at;
    return type;
  }

  // Comma-separated hex bytes; a line ending in '\' goes on at the first non-blank of the next.
  std::string hexList(Statement& statement, std::size_t at) {
    while (statement.dropContinuation() && next_ < end_) {
      std::wstring_view line = text_.lines[next_];
      std::size_t start = std::min(line.find_first_not_of(kRegBlanks), line.size());
      statement.append(line.substr(start), next_ + 1, start);
      ++next_;
    }
    std::wstring_view text = statement.text();
    std::string bytes;
    skipBlanks(text, at);
    if (at == text.size() || text[at] == L';') return bytes;
    for (;;) {
      skipBlanks(text, at);
      std::size_t start = at;
      auto byte = hexNumber(text, at, 2);
      if (!byte) fail(statement, start, "expected a hex byte, 00 to ff");
      bytes.push_back(static_cast<char>(*byte));
      skipBlanks(text, at);
      if (at == text.size() || text[at] != L',') break;
      ++at;
    }
    expectEnd(statement, at);
    return bytes;
  }

  // REGEDIT4 wrote the strings of hex(1), hex(2) and hex(7) in the ANSI code page; the registry
  // keeps them in UTF-16LE.
  std::string storedBytes(std::uint32_t type, std::string bytes) const {
    if (!text_.regedit4 || (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ))
      return bytes;
    auto decoded = decode(ansiCodePage_, bytes.data(), bytes.size());
    return decoded ? utf16Bytes(decoded->text) : bytes;
  }

  // A quoted string with the escapes \\ and \"; `at` moves past the closing quote. The string is
  // a view of the statement, or of the parser's own copy when it has escapes, until the next call.
  std::wstring_view quoted(const Statement& statement, std::size_t& at) {
    std::wstring_view text = statement.text();
    std::size_t open = at++;
    std::size_t close = at;
    while (close < text.size() && text[close] != L'"' && text[close] != L'\\') ++close;
    if (close < text.size() && text[close] == L'"') {
      at = close + 1;
      return text.substr(open + 1, close - open - 1);
    }
    std::wstring& result = unescaped_;
    result.clear();
    for (;; ++at) {
      if (at == text.size()) fail(statement, open, "missing the closing '\"'");
      wchar_t c = text[at];
      if (c == L'"') break;
      if (c == L'\\') {
        if (at + 1 == text.size() || (text[at + 1] != L'\\' && text[at + 1] != L'"'))
          fail(statement, at, "expected \\\\ or \\\" after a backslash");
        c = text[++at];
      }
      result.push_back(c);
    }
    ++at;
    return result;
  }

  // Only blanks and a ; comment may follow a value.
  void expectEnd(const Statement& statement, std::size_t at) const {
    std::wstring_view text = statement.text();
    skipBlanks(text, at);
    if (at < text.size() && text[at] != L';')
      fail(statement, at, "unexpected text after the value");
  }

  [[noreturn]] void fail(const Statement& statement, std::size_t at,
                         const std::string& problem) const {
    throw MachineError(file_ + ":" + statement.placeOf(at) + ": " + problem);
  }

  Registry& registry_;
  const RegText& text_;
  const std::string& file_;
  unsigned ansiCodePage_;
  std::size_t next_;  // the line to read next; line 0 is the header
  std::size_t end_;
  RegistryKey* key_ = nullptr;  // where values go
  bool keyDeleted_ = false;     // the last key line was [-key]
  std::wstring unescaped_;      // the last quoted string that had escapes
  // The keys of the path last made, from the hive's root down; emptied when a key is deleted.
  std::vector<RegistryKey*> made_;
  Hive madeHive_ = Hive::LocalMachine;
};

bool startsKey(std::wstring_view line) {
  std::size_t at = line.find_first_not_of(kRegBlanks);
  return at != std::wstring_view::npos && line[at] == L'[';
}

bool goesOn(std::wstring_view line) {
  std::size_t last = line.find_last_not_of(kRegBlanks);
  return last != std::wstring_view::npos && line[last] == L'\\';
}

// Where the lines may be cut into parts read apart: before a key line that no hex list goes on
// into, every kLinesPerPart lines or so. The first part starts after the header.
std::vector<std::size_t> partStarts(const RegText& text) {
  std::vector<std::size_t> starts{1};
  for (std::size_t at = 1 + kLinesPerPart; at < text.lines.size(); ++at)
    if (at - starts.back() >= kLinesPerPart && startsKey(text.lines[at]) &&
        !goesOn(text.lines[at - 1]))
      starts.push_back(at);
  return starts;
}

bool deletes(std::wstring_view line) {
  std::size_t at = line.find_first_not_of(kRegBlanks);
  if (at != std::wstring_view::npos && line.compare(at, 2, L"[-") == 0) return true;
  for (std::size_t equals = line.find(L'='); equals != std::wstring_view::npos;
       equals = line.find(L'=', equals + 1)) {
    std::size_t next = line.find_first_not_of(kRegBlanks, equals + 1);
    if (next != std::wstring_view::npos && line[next] == L'-') return true;
  }
  return false;
}

// Whether the text deletes keys or values: such a text acts on what came before it, so it is
// read in one piece. A line that only looks so costs no more than that. Looked for on every
// processor, in parts of lines.
bool deletesAnything(const RegText& text) {
  std::vector<char> found(slicesOf(text.lines.size(), kLinesPerPart), 0);
  inParallelSlices(
      text.lines.size(), kLinesPerPart, [&](std::size_t part, std::size_t first, std::size_t end) {
        found[part] = std::any_of(text.lines.begin() + first, text.lines.begin() + end, deletes);
      });
  return std::find(found.begin(), found.end(), 1) != found.end();
}

}  // namespace

void mergeRegFile(Registry& registry, std::string_view bytes, const std::string& file,
                  unsigned ansiCodePage) {
  RegText text = decodeRegText(bytes, file, ansiCodePage);
  std::vector<std::size_t> starts =
      deletesAnything(text) ? std::vector<std::size_t>{1} : partStarts(text);
  // The first part goes straight into the registry; the others into registries of their own,
  // merged after it in order.
  std::vector<Registry> later(starts.size() - 1);
  inParallel(starts.size(), [&](std::size_t part) {
    std::size_t end = part + 1 < starts.size() ? starts[part + 1] : text.lines.size();
    Parser(part == 0 ? registry : later[part - 1], text, starts[part], end, file, ansiCodePage)
        .run();
  });
  for (Registry& part : later)
    for (Hive hive : {Hive::LocalMachine, Hive::CurrentUser})
      registry.root(hive).absorb(std::move(part.root(hive)));
}

}  // namespace winapi
