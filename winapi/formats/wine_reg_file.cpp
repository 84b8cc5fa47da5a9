// Reading Wine's registry files line by line. A line ending in '\' goes on at the first
// non-blank of the next (Wine wraps long hex lists so). Text is ASCII with escapes, or UTF-8.
#include "winapi/formats/wine_reg_file.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "winapi/formats/reg_text.h"
#include "winapi/include/windows.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/errors.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr std::string_view kHeader = "WINE REGISTRY Version 2";
constexpr std::wstring_view kRootComment = L";; All keys relative to ";
constexpr std::wstring_view kLinkValue = L"SymbolicLinkValue";
// Windows' own limits, which also bound what a hostile file can build.
constexpr std::size_t kMaxKeyName = 255;
constexpr std::size_t kMaxValueName = 16383;
constexpr std::size_t kMaxDepth = 512;
// Links that copy links could otherwise multiply a small file into any size.
constexpr std::size_t kMaxLinkedEntries = 1 << 20;

int hexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

// Up to `most` digits of `base` at `at`, which moves past them; nullopt for none.
std::optional<std::uint32_t> number(std::wstring_view text, std::size_t& at, std::size_t most,
                                    int base) {
  std::size_t start = at;
  std::uint32_t value = 0;
  for (int digit;
       at < text.size() && at - start < most && (digit = hexDigit(text[at])) >= 0 && digit < base;
       ++at)
    value = value * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digit);
  if (at == start) return std::nullopt;
  return value;
}

// Escapes give UTF-16 code units one by one; a pair of them is one character here.
std::wstring joinSurrogates(const std::wstring& units) {
  bool any =
      std::any_of(units.begin(), units.end(), [](wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; });
  return any ? fromUtf16Bytes(utf16Bytes(units)) : units;
}

// REG_DWORD data: little-endian.
std::string dwordBytes(std::uint32_t value) {
  std::string data(4, '\0');
  putLittleEndian(data, 0, value, 4);
  return data;
}

// The path below a root: "a\\b" split at the separators.
std::optional<RegistryPath> splitPath(std::wstring_view path) {
  RegistryPath parts;
  for (std::size_t start = 0; start <= path.size();) {
    std::size_t slash = std::min(path.find(L'\\', start), path.size());
    if (slash == start) return std::nullopt;
    parts.emplace_back(path.substr(start, slash - start));
    start = slash + 1;
  }
  return parts;
}

bool startsWithPath(const RegistryPath& path, const RegistryPath& prefix) {
  return path.size() >= prefix.size() &&
         std::equal(
             prefix.begin(), prefix.end(), path.begin(),
             [](const std::wstring& a, const std::wstring& b) { return equalsIgnoringCase(a, b); });
}

// One line as Wine reads it, with the number of its first line in the file.
struct Line {
  std::wstring text;
  std::size_t number = 0;
};

class Parser {
 public:
  Parser(Registry& registry, Hive hive, std::string_view bytes, const std::string& file)
      : root_(registry.root(hive)), bytes_(bytes), file_(file) {}

  void run() {
    Line line;
    if (!nextLine(line) || toUtf8(line.text) != kHeader)
      throw MachineError(file_ + ":1: expected \"" + std::string(kHeader) + "\" as the first line");
    while (nextLine(line)) {
      std::wstring_view text = line.text;
      std::size_t at = std::min(text.find_first_not_of(kRegBlanks), text.size());
      if (at == text.size()) continue;
      switch (text[at]) {
        case L';':
          rootComment(line, at);
          break;
        case L'#':
          if (text.substr(at) == L"#link" && key_) links_.push_back({keyPath_, line.number});
          break;  // #time, #class and #arch say nothing the registry here keeps
        case L'[':
          keyLine(line, at);
          break;
        case L'"':
        case L'@':
          valueLine(line, at);
          break;
        default:
          fail(line, "expected [key], \"name\"=, @=, #option or a ; comment");
      }
    }
    resolveLinks();
  }

 private:
  struct Link {
    RegistryPath path;
    std::size_t line;
  };

  // The next line, joined with those it goes on over; false at the end of the file.
  bool nextLine(Line& line) {
    if (next_ > bytes_.size()) return false;
    line.number = lineNumber_ + 1;
    line.text = physicalLine();
    while (!line.text.empty() && line.text.back() == L'\\' && next_ <= bytes_.size()) {
      line.text.pop_back();
      std::wstring piece = physicalLine();
      line.text.append(piece, std::min(piece.find_first_not_of(kRegBlanks), piece.size()));
    }
    return true;
  }

  std::wstring physicalLine() {
    std::size_t end = std::min(bytes_.find('\n', next_), bytes_.size());
    std::string_view bytes = bytes_.substr(next_, end - next_);
    next_ = end + 1;
    ++lineNumber_;
    if (!bytes.empty() && bytes.back() == '\r') bytes.remove_suffix(1);
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0; }))
      return std::wstring(bytes.begin(), bytes.end());
    auto decoded = decode(kUtf8CodePage, bytes.data(), bytes.size());
    if (!decoded || decoded->invalid)
      throw MachineError(file_ + ":" + std::to_string(lineNumber_) + ": not UTF-8 text");
    return std::move(decoded->text);
  }

  // ";; All keys relative to REGISTRY\\Machine" names what #link targets are relative to.
  void rootComment(const Line& line, std::size_t at) {
    if (line.text.compare(at, kRootComment.size(), kRootComment) != 0) return;
    at += kRootComment.size();
    auto root = splitPath(unescape(line, at, L'\0'));
    if (!root) fail(line, "empty key name in the root");
    rootPath_ = std::move(*root);
  }

  void keyLine(const Line& line, std::size_t at) {
    std::wstring name = unescape(line, ++at, L']');
    std::size_t end = std::min(line.text.find_first_not_of(kRegBlanks, at), line.text.size());
    std::size_t digits = end;
    if (end < line.text.size() &&
        (!number(line.text, digits, 20, 10) ||
         line.text.find_first_not_of(kRegBlanks, digits) != std::wstring::npos))
      fail(line, "expected only a time stamp after the key");
    auto path = splitPath(name);
    if (!path) fail(line, "empty key name");
    if (path->size() > kMaxDepth) fail(line, "more than 512 levels of keys");
    key_ = &root_;
    for (const std::wstring& part : *path) {
      if (part.size() > kMaxKeyName) fail(line, "a key name is at most 255 characters");
      key_ = &key_->makeSubKey(part);
    }
    keyPath_ = std::move(*path);
  }

  void valueLine(const Line& line, std::size_t at) {
    if (!key_) fail(line, "a value needs a [key] line before it");
    const std::wstring& text = line.text;
    std::wstring name;
    if (text[at] == L'@')
      ++at;
    else
      name = unescape(line, ++at, L'"');
    if (name.size() > kMaxValueName) fail(line, "a value name is at most 16383 characters");
    if (at == text.size() || text[at] != L'=') fail(line, "expected '=' after the value name");
    RegistryValue value = data(line, ++at);
    value.name = std::move(name);
    key_->setValue(std::move(value));
  }

  RegistryValue data(const Line& line, std::size_t at) {
    std::wstring_view text = line.text;
    if (text.compare(at, 1, L"\"") == 0) return string(line, at, REG_SZ);
    if (text.compare(at, 4, L"str(") == 0) {
      std::uint32_t stringType = type(line, at += 3);
      if (text.compare(at, 1, L":") != 0) fail(line, "expected ':' after str(type)");
      return string(line, at + 1, stringType);
    }
    if (text.compare(at, 6, L"dword:") == 0) {
      auto value = number(text, at += 6, 8, 16);
      if (!value) fail(line, "expected 1 to 8 hex digits after dword:");
      expectEnd(line, at);
      return {L"", REG_DWORD, dwordBytes(*value)};
    }
    if (text.compare(at, 4, L"hex:") == 0) return hexList(line, at + 4, REG_BINARY);
    if (text.compare(at, 4, L"hex(") == 0) {
      std::uint32_t hexType = type(line, at += 3);
      if (text.compare(at, 1, L":") != 0) fail(line, "expected ':' after hex(type)");
      return hexList(line, at + 1, hexType);
    }
    fail(line, "expected \"text\", str(type):, dword:, hex: or hex(type): after '='");
  }

  // "(N)" at `at`, which moves past it.
  std::uint32_t type(const Line& line, std::size_t& at) {
    auto value = number(line.text, ++at, 8, 16);
    if (!value || line.text.compare(at, 1, L")") != 0)
      fail(line, "expected a hex type number and ')'");
    ++at;
    return *value;
  }

  // A quoted string, kept with its terminator as Wine keeps every string type.
  RegistryValue string(const Line& line, std::size_t at, std::uint32_t type) {
    if (line.text.compare(at, 1, L"\"") != 0) fail(line, "expected '\"' to open the text");
    std::wstring text = unescape(line, ++at, L'"');
    expectEnd(line, at);
    return {L"", type, utf16Bytes(text) + std::string(2, '\0')};
  }

  // Comma-separated bytes, one or two hex digits each.
  RegistryValue hexList(const Line& line, std::size_t at, std::uint32_t type) {
    std::wstring_view text = line.text;
    std::string bytes;
    while (at < text.size() && kRegBlanks.find(text[at]) == std::wstring_view::npos) {
      std::string place = "hex byte " + std::to_string(bytes.size() + 1);
      auto byte = number(text, at, 2, 16);
      if (!byte) fail(line, "expected a hex byte, 00 to ff, at " + place);
      bytes.push_back(static_cast<char>(*byte));
      if (at < text.size() && text[at] == L',')
        ++at;
      else if (at < text.size() && kRegBlanks.find(text[at]) == std::wstring_view::npos)
        fail(line, "expected ',' after " + place);
    }
    expectEnd(line, at);
    return {L"", type, std::move(bytes)};
  }

  // Text up to the unescaped `end` (or the end of the line for '\0'); `at` moves past it.
  // Wine's escapes: \a \b \e \f \n \r \t \v, \x with 1-4 hex digits, \ with 1-3 octal digits,
  // and any other character after '\' as itself.
  std::wstring unescape(const Line& line, std::size_t& at, wchar_t end) {
    std::wstring_view text = line.text;
    std::wstring units;
    while (at < text.size() && text[at] != end) {
      wchar_t c = text[at++];
      if (c == L'\\' && at < text.size()) c = escaped(text, at);
      units.push_back(c);
    }
    if (end != L'\0') {
      if (at == text.size())
        fail(line, std::string("missing the closing '") + static_cast<char>(end) + "'");
      ++at;
    }
    return joinSurrogates(units);
  }

  static wchar_t escaped(std::wstring_view text, std::size_t& at) {
    static constexpr std::pair<wchar_t, wchar_t> kControls[] = {
        {L'a', L'\a'}, {L'b', L'\b'}, {L'e', L'\x1b'}, {L'f', L'\f'},
        {L'n', L'\n'}, {L'r', L'\r'}, {L't', L'\t'},   {L'v', L'\v'}};
    wchar_t c = text[at];
    for (auto [letter, control] : kControls) {
      if (c != letter) continue;
      ++at;
      return control;
    }
    std::size_t digits = at + 1;
    if (c == L'x')
      if (auto value = number(text, digits, 4, 16)) {
        at = digits;
        return static_cast<wchar_t>(*value);
      }
    if (auto value = number(text, at, 3, 8)) return static_cast<wchar_t>(*value & 0xFFFF);
    return text[at++];
  }

  void expectEnd(const Line& line, std::size_t at) const {
    if (line.text.find_first_not_of(kRegBlanks, at) != std::wstring::npos)
      fail(line, "unexpected text after the value");
  }

  // A link reads as what it points at: the target's keys and values are copied over it. Links
  // out of this file's root, to missing keys or into themselves stay as they are.
  void resolveLinks() {
    for (const Link& link : links_) {
      RegistryKey* key = root_.find(link.path);
      const RegistryValue* value = key ? key->value(kLinkValue) : nullptr;
      if (!value || rootPath_.empty()) continue;
      std::wstring target = fromUtf16Bytes(value->data);
      auto path = splitPath(std::wstring_view(target).substr(target.empty() ? 0 : 1));
      if (target.empty() || target[0] != L'\\' || !path || !startsWithPath(*path, rootPath_))
        continue;
      path->erase(path->begin(), path->begin() + static_cast<std::ptrdiff_t>(rootPath_.size()));
      const RegistryKey* from = root_.find(*path);
      if (!from || startsWithPath(*path, link.path) || startsWithPath(link.path, *path)) continue;
      key->removeValue(kLinkValue);
      copyInto(*from, *key, link.path.size(), link.line);
    }
  }

  void copyInto(const RegistryKey& from, RegistryKey& to, std::size_t depth, std::size_t line) {
    linkedEntries_ += from.values().size() + from.subKeys().size();
    if (linkedEntries_ > kMaxLinkedEntries)
      throw MachineError(file_ + ":" + std::to_string(line) +
                         ": links copy more than 1048576 keys and values");
    if (depth >= kMaxDepth && !from.subKeys().empty())
      throw MachineError(file_ + ":" + std::to_string(line) +
                         ": the link makes more than 512 levels of keys");
    for (const RegistryValue& value : from.values()) to.setValue(value);
    for (const auto& subKey : from.subKeys())
      copyInto(*subKey, to.makeSubKey(subKey->name()), depth + 1, line);
  }

  [[noreturn]] void fail(const Line& line, const std::string& problem) const {
    throw MachineError(file_ + ":" + std::to_string(line.number) + ": " + problem);
  }

  RegistryKey& root_;
  std::string_view bytes_;
  const std::string& file_;
  std::size_t next_ = 0;        // the byte where the next line starts
  std::size_t lineNumber_ = 0;  // of the last line read
  RegistryPath rootPath_;       // e.g. REGISTRY, Machine
  RegistryKey* key_ = nullptr;  // where values go
  RegistryPath keyPath_;
  std::vector<Link> links_;
  std::size_t linkedEntries_ = 0;
};

}  // namespace

void mergeWineRegFile(Registry& registry, Hive hive, std::string_view bytes,
                      const std::string& file) {
  Parser(registry, hive, bytes, file).run();
}

}  // namespace winapi
