// Case folding is ASCII only: every name the collector looks up is ASCII.
#include "winapi/support/text.h"

#include <algorithm>
#include <cstring>

namespace winapi {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::string asciiLower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

std::string asciiUpper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return upper(x) == upper(y); });
}

bool LessIgnoringCase::operator()(std::string_view a, std::string_view b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return static_cast<unsigned char>(upper(x)) < static_cast<unsigned char>(upper(y));
  });
}

std::size_t copyOrMeasure(const std::string& text, char* buffer, std::size_t size) {
  if (!buffer || size <= text.size()) return text.size() + 1;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return text.size();
}

}  // namespace winapi
