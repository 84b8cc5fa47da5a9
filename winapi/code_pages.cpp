#include "winapi/code_pages.h"

#include <iconv.h>

#include <cerrno>
#include <map>

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

}  // namespace

std::optional<std::string> charsetOf(unsigned codePage) {
  std::string name = nameOf(codePage);
  if (!Converter("WCHAR_T", name).valid()) return std::nullopt;
  return name;
}

std::optional<Decoded> decode(unsigned codePage, const char* bytes, std::size_t size) {
  auto charset = charsetOf(codePage);
  if (!charset) return std::nullopt;
  Converter converter("WCHAR_T", *charset);
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
  Converter converter(*charset, "WCHAR_T");
  Encoded result;
  // One character at a time, so that each unmappable one is replaced and output can be cut whole.
  for (std::size_t i = 0; i < size; ++i) {
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
