#include "winapi/formats/pe_resources.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "winapi/include/windows.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr std::uint16_t kDosSignature = 0x5A4D;     // "MZ"
constexpr std::uint32_t kPeSignature = 0x00004550;  // "PE\0\0"
constexpr std::size_t kPeOffsetField = 0x3C;
constexpr std::size_t kFileHeaderSize = 20;
constexpr std::size_t kSectionHeaderSize = 40;
constexpr std::size_t kDirectoryHeaderSize = 16;
constexpr std::size_t kDirectoryEntrySize = 8;
constexpr std::size_t kDataEntrySize = 16;
constexpr std::uint32_t kResourceDirectoryIndex = 2;
constexpr std::uint32_t kSubdirectoryBit = 0x80000000;

// Where the count of data directories lies in the optional header, by its magic number.
struct OptionalHeaderKind {
  std::uint16_t magic;
  std::size_t directoryCountOffset;
};
const OptionalHeaderKind kOptionalHeaders[] = {
    {0x10B, 92},   // PE32
    {0x20B, 108},  // PE32+
};

// Little-endian reads that give nothing outside the bytes.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  bool holds(std::uint64_t offset, std::uint64_t size) const {
    return offset <= bytes_.size() && size <= bytes_.size() - offset;
  }
  std::optional<std::uint32_t> u16(std::uint64_t offset) const { return read(offset, 2); }
  std::optional<std::uint32_t> u32(std::uint64_t offset) const { return read(offset, 4); }
  std::string_view view() const { return bytes_; }

 private:
  std::optional<std::uint32_t> read(std::uint64_t offset, std::size_t size) const {
    return littleEndianWithin(bytes_, offset, size);
  }

  std::string_view bytes_;
};

struct Section {
  std::uint32_t virtualAddress;
  std::uint32_t rawSize;
  std::uint32_t rawOffset;
};

struct Headers {
  std::uint32_t resourceRva = 0;
  std::vector<Section> sections;
};

std::optional<std::size_t> directoryCountOffset(std::uint32_t magic) {
  for (const OptionalHeaderKind& kind : kOptionalHeaders)
    if (kind.magic == magic) return kind.directoryCountOffset;
  return std::nullopt;
}

// The resource directory's address, 0 when the optional header has none.
std::optional<std::uint32_t> resourceRva(const Bytes& file, std::uint64_t optional,
                                         std::uint32_t optionalSize) {
  auto countOffset = directoryCountOffset(file.u16(optional).value_or(0));
  if (!countOffset || optionalSize < *countOffset + 4) return std::nullopt;
  std::uint64_t entry = *countOffset + 4 + 8 * kResourceDirectoryIndex;
  if (file.u32(optional + *countOffset).value_or(0) <= kResourceDirectoryIndex ||
      optionalSize < entry + 8)
    return 0;
  return file.u32(optional + entry + 4).value_or(0) == 0 ? 0 : file.u32(optional + entry);
}

std::optional<Headers> readHeaders(const Bytes& file) {
  auto peOffset = file.u32(kPeOffsetField);
  if (file.u16(0) != kDosSignature || !peOffset || file.u32(*peOffset) != kPeSignature)
    return std::nullopt;
  std::uint64_t fileHeader = std::uint64_t{*peOffset} + 4;
  auto sectionCount = file.u16(fileHeader + 2);
  auto optionalSize = file.u16(fileHeader + 16);
  std::uint64_t optional = fileHeader + kFileHeaderSize;
  if (!sectionCount || !optionalSize || !file.holds(optional, *optionalSize)) return std::nullopt;
  Headers headers;
  auto rva = resourceRva(file, optional, *optionalSize);
  std::uint64_t table = optional + *optionalSize;
  if (!rva || !file.holds(table, std::uint64_t{*sectionCount} * kSectionHeaderSize))
    return std::nullopt;
  headers.resourceRva = *rva;
  for (std::uint64_t at = table; at < table + *sectionCount * kSectionHeaderSize;
       at += kSectionHeaderSize)
    headers.sections.push_back({*file.u32(at + 12), *file.u32(at + 16), *file.u32(at + 20)});
  return headers;
}

// The file's bytes from `rva` to the end of the raw data of the section that holds it.
std::optional<std::string_view> bytesFrom(const Bytes& file, const Headers& headers,
                                          std::uint32_t rva) {
  for (const Section& section : headers.sections) {
    if (rva < section.virtualAddress || rva - section.virtualAddress >= section.rawSize) continue;
    std::uint64_t start = std::uint64_t{section.rawOffset} + (rva - section.virtualAddress);
    std::uint64_t end = std::min<std::uint64_t>(std::uint64_t{section.rawOffset} + section.rawSize,
                                                file.view().size());
    if (start < end) return file.view().substr(start, end - start);
  }
  return std::nullopt;
}

struct Entry {
  std::uint32_t name;
  std::uint32_t target;
};

// One directory of the resource tree; all its entries lie in the resource bytes.
class Directory {
 public:
  static std::optional<Directory> at(const Bytes& resources, std::uint32_t offset) {
    auto named = resources.u16(std::uint64_t{offset} + 12);
    auto numbered = resources.u16(std::uint64_t{offset} + 14);
    std::uint64_t entries = std::uint64_t{offset} + kDirectoryHeaderSize;
    if (!named || !numbered ||
        !resources.holds(entries, (*named + *numbered) * kDirectoryEntrySize))
      return std::nullopt;
    return Directory(resources, entries, *named, *named + *numbered);
  }

  std::optional<Entry> first() const {
    return count_ == 0 ? std::nullopt : std::optional<Entry>(entry(0));
  }
  // Entries with a number follow the named ones.
  std::optional<Entry> numbered(std::uint32_t id) const {
    for (std::uint32_t i = named_; i < count_; ++i)
      if (entry(i).name == id) return entry(i);
    return std::nullopt;
  }

 private:
  Directory(const Bytes& resources, std::uint64_t entries, std::uint32_t named, std::uint32_t count)
      : resources_(resources), entries_(entries), named_(named), count_(count) {}

  Entry entry(std::uint32_t i) const {
    std::uint64_t at = entries_ + i * kDirectoryEntrySize;
    return {*resources_.u32(at), *resources_.u32(at + 4)};
  }

  Bytes resources_;
  std::uint64_t entries_;
  std::uint32_t named_;
  std::uint32_t count_;
};

// The levels of the tree below the root: the type by number, then the first name, then the
// first language, whose entry is the data entry.
struct Level {
  std::uint32_t notFound;
  bool byType;
  bool leadsToDirectory;
};
const Level kLevels[] = {
    {ERROR_RESOURCE_TYPE_NOT_FOUND, true, true},
    {ERROR_RESOURCE_NAME_NOT_FOUND, false, true},
    {ERROR_RESOURCE_LANG_NOT_FOUND, false, false},
};

ResourceLookup failure(std::uint32_t error) { return {error, {}}; }

}  // namespace

ResourceLookup findResource(std::string_view image, std::uint16_t type) {
  Bytes file(image);
  std::optional<Headers> headers = readHeaders(file);
  if (!headers) return failure(ERROR_RESOURCE_DATA_NOT_FOUND);
  std::optional<std::string_view> tree =
      headers->resourceRva ? bytesFrom(file, *headers, headers->resourceRva) : std::nullopt;
  if (!tree || !Directory::at(Bytes(*tree), 0)) return failure(ERROR_RESOURCE_DATA_NOT_FOUND);
  Bytes resources(*tree);
  std::uint32_t offset = 0;
  for (const Level& level : kLevels) {
    std::optional<Directory> directory = Directory::at(resources, offset);
    std::optional<Entry> entry = !directory     ? std::nullopt
                                 : level.byType ? directory->numbered(type)
                                                : directory->first();
    if (!entry || ((entry->target & kSubdirectoryBit) != 0) != level.leadsToDirectory)
      return failure(level.notFound);
    offset = entry->target & ~kSubdirectoryBit;
  }
  if (!resources.holds(offset, kDataEntrySize)) return failure(ERROR_RESOURCE_DATA_NOT_FOUND);
  std::uint32_t size = *resources.u32(std::uint64_t{offset} + 4);
  std::optional<std::string_view> data = bytesFrom(file, *headers, *resources.u32(offset));
  if (!data || data->size() < size) return failure(ERROR_RESOURCE_DATA_NOT_FOUND);
  return {ERROR_SUCCESS, data->substr(0, size)};
}

}  // namespace winapi
