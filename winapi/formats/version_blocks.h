// The buffer that GetFileVersionInfoA fills and VerQueryValueA reads. It starts with the
// VS_VERSIONINFO block as the file has it; after the block come "FE2X" and as many bytes again
// as the block, where VerQueryValueA puts ANSI copies of text values.
// A block is WORD wLength, WORD wValueLength, WORD wType (1: the value is UTF-16 text, its
// length in characters), a NUL-terminated UTF-16 key, the value and the child blocks, each on
// a 4-byte boundary. Every length is checked against the block that holds it, the root's
// wLength being the outermost; a zero wLength ends a walk.
#ifndef VRX_WINAPI_VERSION_BLOCKS_H
#define VRX_WINAPI_VERSION_BLOCKS_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace winapi {

// The root block of a version resource, when its wLength fits the resource.
std::optional<std::string_view> versionData(std::string_view resource);

// What GetFileVersionInfoSizeA asks for: the block, the signature and the room for ANSI text.
std::size_t versionInfoSize(std::string_view data);
// Fills `buffer` of versionInfoSize(data) bytes: the block and the signature.
void storeVersionInfo(std::string_view data, unsigned char* buffer);

// Where the ANSI copy of a text value at `offset` goes, and how many bytes it may take; nullopt
// when the signature is not there (the buffer was not filled by storeVersionInfo).
struct AnsiRoom {
  unsigned char* place;
  std::size_t size;
};
std::optional<AnsiRoom> ansiRoom(unsigned char* buffer, std::size_t offset);

struct VersionValue {
  std::size_t offset;  // from the start of the buffer
  std::size_t length;  // characters for text, else bytes; what lies inside the block
  bool text;
};
// The value of the block at `path` below the root ("\\" is the root itself), keys compared
// without regard to case; `path` in UTF-8.
std::optional<VersionValue> findVersionValue(const unsigned char* buffer, std::string_view path);

}  // namespace winapi

#endif
