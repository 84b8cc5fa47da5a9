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
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    // Names mostly share their case, so equal bytes are passed over before lowering.
    if (a[i] == b[i]) continue;
    const unsigned char x = lowered(a[i]), y = lowered(b[i]);
    if (x != y) return x < y;
  }
  return a.size() < b.size();
}

bool CIMNameEqual(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i] && lowered(a[i]) != lowered(b[i])) return false;
  return true;
}

size_t CIMNameHash(const std::string& name) {
  // FNV-1a over the lower-cased bytes.
  size_t hash = 14695981039346656037ull;
  for (char c : name) hash = (hash ^ lowered(c)) * 1099511628211ull;
  return hash;
}

}  // namespace NZARVEK20
