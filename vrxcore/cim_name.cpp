#include "vrxcore/cim_name.h"

#include <algorithm>

namespace NZARVEK20 {
namespace {

// What tolower does in the C locale, which is the only one the program runs in, without a call
// into the C library for every character.
unsigned char lowered(char c) {
  const unsigned char byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

}  // namespace

std::string CIMNameKey(const std::string& name) {
  std::string key(name);
  for (char& c : key) c = static_cast<char>(lowered(c));
  return key;
}

bool CIMNameLess(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return lowered(x) < lowered(y); });
}

}  // namespace NZARVEK20
