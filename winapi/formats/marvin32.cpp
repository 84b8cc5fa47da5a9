// Marvin32 mixes each 32-bit little-endian word of the data into a two-word state, then a final
// word that holds the last 0-3 bytes followed by 0x80.
#include "winapi/formats/marvin32.h"

#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr std::uint32_t rotateLeft(std::uint32_t value, int bits) {
  return value << bits | value >> (32 - bits);
}

struct State {
  std::uint32_t low, high;

  void mix(std::uint32_t word) {
    low += word;
    high ^= low;
    low = rotateLeft(low, 20) + high;
    high = rotateLeft(high, 9) ^ low;
    low = rotateLeft(low, 27) + high;
    high = rotateLeft(high, 19);
  }
};

}  // namespace

std::uint64_t marvin32(std::string_view data, std::uint64_t seed) {
  State state{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32)};
  const std::size_t whole = data.size() & ~std::size_t{3};
  for (std::size_t at = 0; at < whole; at += 4) state.mix(littleEndian(data, at, 4));
  const std::size_t tail = data.size() - whole;
  state.mix(littleEndian(data, whole, tail) | 0x80u << (8 * tail));
  state.mix(0);
  return std::uint64_t{state.high} << 32 | state.low;
}

}  // namespace winapi
