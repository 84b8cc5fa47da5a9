#include "winapi/formats/version_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "winapi/support/little_endian.h"
#include "winapi/support/text.h"
#include "winapi/support/unicode_text.h"

namespace winapi {

namespace {

constexpr std::size_t kHeaderSize = 6;
constexpr char kSignature[4] = {'F', 'E', '2', 'X'};
constexpr unsigned kTextType = 1;

unsigned word(const unsigned char* at) {
  return littleEndian({reinterpret_cast<const char*>(at), 2}, 0, 2);
}

std::size_t aligned(std::size_t offset) { return (offset + 3) & ~std::size_t{3}; }

struct Block {
  std::size_t end;
  std::string key;
  VersionValue value;
  std::size_t children;
};

// The block at `offset`, which must end by `limit`; nullopt for a zero or impossible wLength
// or a key without its terminator.
std::optional<Block> blockAt(const unsigned char* buffer, std::size_t offset, std::size_t limit) {
  if (limit < offset || limit - offset < kHeaderSize) return std::nullopt;
  std::size_t length = word(buffer + offset);
  if (length < kHeaderSize || length > limit - offset) return std::nullopt;
  Block block{offset + length, "", {}, 0};
  std::size_t keyEnd = offset + kHeaderSize;
  while (keyEnd + 2 <= block.end && word(buffer + keyEnd) != 0) keyEnd += 2;
  if (keyEnd + 2 > block.end) return std::nullopt;
  block.key = utf16leToUtf8(buffer + offset + kHeaderSize, (keyEnd - offset - kHeaderSize) / 2);
  bool text = word(buffer + offset + 4) == kTextType;
  std::size_t declared = word(buffer + offset + 2) * (text ? 2 : 1);
  std::size_t start = std::min(aligned(keyEnd + 2), block.end);
  std::size_t inside = std::min(declared, block.end - start);
  block.value = {start, text ? inside / 2 : inside, text};
  block.children = std::min(aligned(start + declared), block.end);
  return block;
}

std::optional<Block> childNamed(const unsigned char* buffer, const Block& parent,
                                std::string_view key) {
  for (std::size_t at = parent.children; at < parent.end;) {
    std::optional<Block> child = blockAt(buffer, at, parent.end);
    if (!child) return std::nullopt;
    if (equalsIgnoringCase(child->key, key)) return child;
    at = aligned(child->end);
  }
  return std::nullopt;
}

std::size_t rootLength(const unsigned char* buffer) { return word(buffer); }

}  // namespace

std::optional<std::string_view> versionData(std::string_view resource) {
  if (resource.size() < kHeaderSize) return std::nullopt;
  std::size_t length = rootLength(reinterpret_cast<const unsigned char*>(resource.data()));
  if (length < kHeaderSize || length > resource.size()) return std::nullopt;
  return resource.substr(0, length);
}

std::size_t versionInfoSize(std::string_view data) { return 2 * data.size() + sizeof kSignature; }

void storeVersionInfo(std::string_view data, unsigned char* buffer) {
  std::memcpy(buffer, data.data(), data.size());
  std::memcpy(buffer + data.size(), kSignature, sizeof kSignature);
}

std::optional<AnsiRoom> ansiRoom(unsigned char* buffer, std::size_t offset) {
  std::size_t length = rootLength(buffer);
  if (offset > length || std::memcmp(buffer + length, kSignature, sizeof kSignature) != 0)
    return std::nullopt;
  return AnsiRoom{buffer + length + sizeof kSignature + offset, length - offset};
}

std::optional<VersionValue> findVersionValue(const unsigned char* buffer, std::string_view path) {
  std::optional<Block> block = blockAt(buffer, 0, rootLength(buffer));
  for (std::size_t start = 0; block && start < path.size();) {
    std::size_t end = std::min(path.find('\\', start), path.size());
    if (end > start) block = childNamed(buffer, *block, path.substr(start, end - start));
    start = end + 1;
  }
  return block ? std::optional<VersionValue>(block->value) : std::nullopt;
}

}  // namespace winapi
