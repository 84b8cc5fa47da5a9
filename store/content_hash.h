// The hash that tells two inventories of one machine apart.
#pragma once

#include <string>

namespace vrxstore {

// 64-bit FNV-1a of `text`, as 16 lower-case hex digits: stable across builds and platforms, so
// that the same inventory loaded twice is known as the same snapshot.
std::string contentHash(const std::string& text);

}  // namespace vrxstore
