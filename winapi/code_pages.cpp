#include "winapi/code_pages.h"

#include <iconv.h>

#include <cerrno>
#include <map>
#include <memory>
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

// Opening a conversion costs far more than converting one registry name, so each thread keeps
// the conversions it has opened.
Converter& converterFor(const std::string& to, const std::string& from) {
  thread_local std::map<std::pair<std::string, std::string>, std::unique_ptr<Converter>> opened;
  std::unique_ptr<Converter>& converter = opened[{to, from}];
  if (!converter) converter = std::make_unique<Converter>(to, from);
  converter->reset();
  return *converter;
}

std::string nameOf(unsigned codePage) {
  auto known = kCharsetNames.find(codePage);
  return known != kCharsetNames.end() ? known->second : "CP" + std::to_string(codePage);
}

// Whether every ASCII character is that one byte in the code page, so that it needs no
// conversion: true of the ANSI code pages, not of EBCDIC ones nor of the ISO-2022 and UTF-7
// families, whose shift states make a character's bytes depend on the ones before it.
bool keepsAscii(unsigned codePage, const std::string& charset) {
  if ((codePage >= 50220 && codePage <= 50229) || codePage == 65000) return false;
  thread_local std::map<std::string, bool> known;
  auto found = known.find(charset);
  if (found != known.end()) return found->second;
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
  bool same = converterFor(charset, "WCHAR_T").convert(in, inLeft, out, outLeft) == 0 &&
              std::string(bytes.data(), out) == expected;
  return known[charset] = same;
}

}  // namespace

std::optional<std::string> charsetOf(unsigned codePage) {
  std::string name = nameOf(codePage);
  if (!converterFor("WCHAR_T", name).valid()) return std::nullopt;
  return name;
}

std::optional<Decoded> decode(unsigned codePage, const char* bytes, std::size_t size) {
  auto charset = charsetOf(codePage);
  if (!charset) return std::nullopt;
  Converter& converter = converterFor("WCHAR_T", *charset);
  Decoded result;
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

std::optional<Encoded> encode(unsigned codePage, const wchar_t* text, std::size_t size,
                              const std::string& defaultChar) {
  auto charset = charsetOf(codePage);
  if (!charset) return std::nullopt;
  const bool ascii = keepsAscii(codePage, *charset);
  Converter& converter = converterFor(*charset, "WCHAR_T");
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
