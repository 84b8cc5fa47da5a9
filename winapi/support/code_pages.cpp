#include "winapi/support/code_pages.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>

namespace winapi {

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

// Code pages whose glibc name is not "CP<number>".
const std::map<unsigned, const char*> kCharsetNames = {
    {kUtf8CodePage, "UTF-8"}, {20127, "ASCII"},       {20866, "KOI8-R"},     {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},    {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"}, {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"},    {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"}, {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"},    {28605, "ISO-8859-15"}, {51932, "EUC-JP"},     {54936, "GB18030"},
};

class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : cd_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (valid()) iconv_close(cd_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool valid() const { return cd_ != reinterpret_cast<iconv_t>(-1); }
  // Back to the initial shift state, as a fresh conversion starts.
  void reset() {
    if (valid()) iconv(cd_, nullptr, nullptr, nullptr, nullptr);
  }

  // Converts as much as possible; returns errno of the stop, 0 when all input was used.
  int convert(const char*& in, std::size_t& inLeft, char*& out, std::size_t& outLeft) {
    char* input = const_cast<char*>(in);
    std::size_t result = iconv(cd_, &input, &inLeft, &out, &outLeft);
    in = input;
    return result == static_cast<std::size_t>(-1) ? errno : 0;
  }

 private:
  iconv_t cd_;
};

std::string nameOf(unsigned codePage) {
  auto known = kCharsetNames.find(codePage);
  return known != kCharsetNames.end() ? known->second : "CP" + std::to_string(codePage);
}

// Both conversions of one code page, opened once per thread: opening one costs far more than
// converting one registry name.
struct CodePage {
  std::string charset;
  Converter toWide, fromWide;
  // Every ASCII character is that one byte, so ASCII needs no conversion: true of the ANSI code
  // pages, not of EBCDIC ones nor of the ISO-2022 and UTF-7 families, whose shift states make a
  // character's bytes depend on the ones before it.
  bool keepsAscii = false;

  explicit CodePage(unsigned number)
      : charset(nameOf(number)), toWide("WCHAR_T", charset), fromWide(charset, "WCHAR_T") {
    bool shifting = (number >= 50220 && number <= 50229) || number == 65000;
    keepsAscii = toWide.valid() && fromWide.valid() && !shifting && encodesAsciiAsItself();
  }

 private:
  bool encodesAsciiAsItself() {
    std::wstring ascii;
    std::string expected;
    for (char c = 1; c > 0; ++c) {
      ascii.push_back(static_cast<wchar_t>(c));
      expected.push_back(c);
    }
    std::string bytes(ascii.size() * 8, '\0');
    const char* in = reinterpret_cast<const char*>(ascii.data());
    std::size_t inLeft = ascii.size() * sizeof(wchar_t), outLeft = bytes.size();
    char* out = bytes.data();
    fromWide.reset();
    return fromWide.convert(in, inLeft, out, outLeft) == 0 &&
           std::string(bytes.data(), out) == expected;
  }
};

// nullptr when iconv does not know the page.
CodePage* codePage(unsigned number) {
  thread_local std::unordered_map<unsigned, std::unique_ptr<CodePage>> opened;
  std::unique_ptr<CodePage>& page = opened[number];
  if (!page) page = std::make_unique<CodePage>(number);
  return page->toWide.valid() ? page.get() : nullptr;
}

}  // namespace

std::optional<std::string> charsetOf(unsigned number) {
  CodePage* page = codePage(number);
  if (!page) return std::nullopt;
  return page->charset;
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool keepsAscii(unsigned number) {
  CodePage* page = codePage(number);
  return page && page->keepsAscii;
}

std::optional<Decoded> decode(unsigned number, const char* bytes, std::size_t size) {
  CodePage* page = codePage(number);
  if (!page) return std::nullopt;
  Decoded result;
  if (page->keepsAscii && isAscii(std::string_view(bytes, size))) {
    result.text.assign(bytes, bytes + size);
    return result;
  }
  Converter& converter = page->toWide;
  converter.reset();
  std::wstring chunk(size + 1, L'\0');
  while (size > 0) {
    char* out = reinterpret_cast<char*>(chunk.data());
    std::size_t outLeft = chunk.size() * sizeof(wchar_t);
    int stop = converter.convert(bytes, size, out, outLeft);
    result.text.append(chunk.data(), (chunk.size() * sizeof(wchar_t) - outLeft) / sizeof(wchar_t));
    if (stop == EILSEQ || stop == EINVAL) {
      // Windows turns each byte that starts no character into U+FFFD.
      result.text.push_back(kReplacement);
      result.invalid = true;
      ++bytes;
      --size;
    }
  }
  return result;
}

std::optional<Encoded> encode(unsigned number, const wchar_t* text, std::size_t size,
                              const std::string& defaultChar) {
  CodePage* page = codePage(number);
  if (!page) return std::nullopt;
  const bool ascii = page->keepsAscii;
  Converter& converter = page->fromWide;
  converter.reset();
  Encoded result;
  result.bytes.reserve(size);
  result.ends.reserve(size);
  // One character at a time, so that each unmappable one is replaced and output can be cut whole.
  for (std::size_t i = 0; i < size; ++i) {
    if (ascii && text[i] > 0 && text[i] < 0x80) {
      result.bytes.push_back(static_cast<char>(text[i]));
      result.ends.push_back(result.bytes.size());
      continue;
    }
    char buffer[16];
    const char* in = reinterpret_cast<const char*>(text + i);
    std::size_t inLeft = sizeof(wchar_t);
    char* out = buffer;
    std::size_t outLeft = sizeof buffer;
    if (converter.convert(in, inLeft, out, outLeft) == 0) {
      result.bytes.append(buffer, out);
    } else {
      result.bytes += defaultChar;
      result.usedDefault = true;
    }
    result.ends.push_back(result.bytes.size());
  }
  return result;
}

std::string utf8ToCodePage(unsigned codePage, const std::string& utf8) {
  std::wstring wide = utf8ToWide(utf8);
  auto encoded = encode(codePage, wide.data(), wide.size(), "?");
  return encoded ? encoded->bytes : utf8;
}

std::wstring utf8ToWide(const std::string& utf8) {
  return decode(kUtf8CodePage, utf8.data(), utf8.size())->text;
}

}  // namespace winapi
