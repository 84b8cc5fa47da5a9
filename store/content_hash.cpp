#include "store/content_hash.h"

#include <cstdint>
#include <cstdio>

namespace vrxstore {

std::string contentHash(const std::string& text) {
  std::uint64_t hash = 14695981039346656037ull;
  for (unsigned char c : text) {
    hash ^= c;
    hash *= 1099511628211ull;
  }
  char hex[17];
  std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(hash));
  return hex;
}

}  // namespace vrxstore
