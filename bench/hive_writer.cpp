#include "bench/hive_writer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "winapi/support/little_endian.h"

namespace bench {

namespace {

using winapi::RegistryKey;
using winapi::RegistryValue;

constexpr std::size_t kBaseBlock = 0x1000;  // cell offsets count from its end, the first bin
constexpr std::size_t kBinAlignment = 0x1000;
constexpr std::size_t kBinHeader = 0x20;
constexpr std::size_t kCellAlignment = 8;
constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr std::uint32_t kInlineData = 0x80000000;
// Windows keeps at most this much data in one cell, longer data in segments of this size.
constexpr std::size_t kMaxCellData = 16344;
// Windows keeps each leaf list to about a thousand sub-keys, more under an index root.
constexpr std::size_t kListEntries = 1000;

constexpr std::uint16_t kKeyHiveEntry = 0x0004, kKeyNoDelete = 0x0008, kKeyAsciiName = 0x0020;
constexpr std::uint16_t kValueAsciiName = 0x0001;

// Field offsets of a key (nk) record.
constexpr std::size_t kKeyFlags = 0x02, kKeyParent = 0x10, kKeySubKeys = 0x14,
                      kKeySubKeyList = 0x1C, kKeyVolatileList = 0x20, kKeyValues = 0x24,
                      kKeyValueList = 0x28, kKeySecurity = 0x2C, kKeyClass = 0x30,
                      kKeyMaxSubKeyName = 0x34, kKeyMaxValueName = 0x3C, kKeyMaxValueData = 0x40,
                      kKeyNameLength = 0x48, kKeyName = 0x4C;
// Field offsets of a value (vk) record.
constexpr std::size_t kValueNameLength = 0x02, kValueSize = 0x04, kValueData = 0x08,
                      kValueType = 0x0C, kValueFlags = 0x10, kValueName = 0x14;

// Names with no character beyond U+00FF are kept one byte a character, as Windows keeps them.
struct StoredName {
  std::string bytes;
  bool compressed = false;

  explicit StoredName(std::wstring_view name)
      : compressed(std::all_of(name.begin(), name.end(), [](wchar_t c) { return c <= 0xFF; })) {
    if (!compressed) {
      bytes = winapi::utf16Bytes(name);
      return;
    }
    for (wchar_t c : name) bytes.push_back(static_cast<char>(c));
  }
  // The length Windows records for the longest names: UTF-16 bytes.
  std::size_t utf16Size() const { return compressed ? 2 * bytes.size() : bytes.size(); }
};

// The lh list's hash: the upper-cased UTF-16 units folded by 37.
std::uint32_t nameHash(std::wstring_view name) {
  std::string bytes = winapi::utf16Bytes(name);
  std::uint32_t hash = 0;
  for (std::size_t at = 0; at < bytes.size(); at += 2)
    hash = hash * 37 + static_cast<std::uint32_t>(winapi::upperCase(
                           static_cast<wchar_t>(winapi::littleEndian(bytes, at, 2))));
  return hash;
}

std::size_t roundUp(std::size_t size, std::size_t alignment) {
  return (size + alignment - 1) / alignment * alignment;
}

struct ListEntry {
  std::uint32_t cell;
  std::uint32_t hash;
};

class HiveBuilder {
 public:
  std::string build(const RegistryKey& root) {
    std::uint32_t rootCell = writeKey(root, kNone, kKeyHiveEntry | kKeyNoDelete);
    put32(security_ + 4 + 0x0C, keys_);  // every key refers to the one descriptor
    closeBin();
    writeBaseBlock(rootCell);
    return std::move(hive_);
  }

 private:
  // Little-endian at a file position.
  void putAt(std::size_t at, std::uint32_t value) { winapi::putLittleEndian(hive_, at, value, 4); }
  void put16(std::size_t cellOffset, std::uint16_t value) {
    winapi::putLittleEndian(hive_, kBaseBlock + cellOffset, value, 2);
  }
  void put32(std::size_t cellOffset, std::uint32_t value) { putAt(kBaseBlock + cellOffset, value); }
  void putBytes(std::size_t cellOffset, std::string_view bytes) {
    std::memcpy(&hive_[kBaseBlock + cellOffset], bytes.data(), bytes.size());
  }
  std::size_t end() const { return hive_.size() - kBaseBlock; }

  // A used cell of `payload` bytes (the payload at the returned offset + 4), in the current bin
  // when it fits there.
  std::uint32_t allocate(std::size_t payload) {
    std::size_t size = roundUp(payload + 4, kCellAlignment);
    if (end() + size > binEnd_) openBin(size);
    std::size_t cell = end();
    hive_.resize(hive_.size() + size);
    put32(cell, static_cast<std::uint32_t>(-static_cast<std::int32_t>(size)));
    return static_cast<std::uint32_t>(cell);
  }

  void openBin(std::size_t cellSize) {
    closeBin();
    std::size_t start = end();
    std::size_t size = roundUp(cellSize + kBinHeader, kBinAlignment);
    hive_.resize(hive_.size() + kBinHeader);
    putBytes(start, "hbin");
    put32(start + 0x04, static_cast<std::uint32_t>(start));
    put32(start + 0x08, static_cast<std::uint32_t>(size));
    binEnd_ = start + size;
  }

  // The rest of the current bin becomes one free cell.
  void closeBin() {
    std::size_t rest = binEnd_ - end();
    if (rest == 0) return;
    std::size_t cell = end();
    hive_.resize(kBaseBlock + binEnd_);
    put32(cell, static_cast<std::uint32_t>(rest));
  }

  // Self-relative, with no owner, group or access lists.
  std::uint32_t writeSecurity() {
    std::uint32_t cell = allocate(0x14 + 20);
    putBytes(cell + 4, "sk");
    put32(cell + 4 + 0x04, cell);  // the only descriptor: its own neighbour both ways
    put32(cell + 4 + 0x08, cell);
    put32(cell + 4 + 0x10, 20);
    hive_[kBaseBlock + cell + 4 + 0x14] = 1;  // revision
    put16(cell + 4 + 0x16, 0x8000);           // self-relative
    return cell;
  }

  std::uint32_t writeKey(const RegistryKey& key, std::uint32_t parent, std::uint16_t flags) {
    ++keys_;
    StoredName name(key.name());
    std::uint32_t cell = allocate(kKeyName + name.bytes.size());
    // The root key opens the first bin and the descriptor follows it, as Windows lays them out.
    if (parent == kNone) security_ = writeSecurity();
    std::size_t record = cell + 4;
    putBytes(record, "nk");
    put16(record + kKeyFlags, flags | (name.compressed ? kKeyAsciiName : 0));
    put32(record + kKeyParent, parent);
    put32(record + kKeyVolatileList, kNone);
    put32(record + kKeySecurity, security_);
    put32(record + kKeyClass, kNone);
    put16(record + kKeyNameLength, static_cast<std::uint16_t>(name.bytes.size()));
    putBytes(record + kKeyName, name.bytes);
    writeValues(key, record);
    writeSubKeys(key, cell);
    return cell;
  }

  void writeValues(const RegistryKey& key, std::size_t record) {
    std::vector<std::uint32_t> cells;
    std::size_t longestName = 0, longestData = 0;
    for (const RegistryValue& value : key.values()) {
      cells.push_back(writeValue(value));
      longestName = std::max(longestName, StoredName(value.name).utf16Size());
      longestData = std::max(longestData, value.data.size());
    }
    put32(record + kKeyValues, static_cast<std::uint32_t>(cells.size()));
    put32(record + kKeyValueList, cells.empty() ? kNone : writeOffsets(cells));
    put32(record + kKeyMaxValueName, static_cast<std::uint32_t>(longestName));
    put32(record + kKeyMaxValueData, static_cast<std::uint32_t>(longestData));
  }

  std::uint32_t writeValue(const RegistryValue& value) {
    StoredName name(value.name);
    std::uint32_t cell = allocate(kValueName + name.bytes.size());
    std::size_t record = cell + 4;
    putBytes(record, "vk");
    put16(record + kValueNameLength, static_cast<std::uint16_t>(name.bytes.size()));
    put32(record + kValueType, value.type);
    put16(record + kValueFlags, name.compressed ? kValueAsciiName : 0);
    putBytes(record + kValueName, name.bytes);
    auto size = static_cast<std::uint32_t>(value.data.size());
    if (size <= 4) {
      put32(record + kValueSize, size | kInlineData);
      putBytes(record + kValueData, value.data);
    } else {
      put32(record + kValueSize, size);
      put32(record + kValueData, writeData(value.data));
    }
    return cell;
  }

  std::uint32_t writeBytes(std::string_view bytes) {
    std::uint32_t cell = allocate(bytes.size());
    putBytes(cell + 4, bytes);
    return cell;
  }

  // Data beyond one cell: a db record listing its segments.
  std::uint32_t writeData(std::string_view data) {
    if (data.size() <= kMaxCellData) return writeBytes(data);
    std::vector<std::uint32_t> segments;
    for (std::size_t at = 0; at < data.size(); at += kMaxCellData)
      segments.push_back(writeBytes(data.substr(at, kMaxCellData)));
    std::uint32_t list = writeOffsets(segments);
    std::uint32_t cell = allocate(12);
    putBytes(cell + 4, "db");
    put16(cell + 4 + 0x02, static_cast<std::uint16_t>(segments.size()));
    put32(cell + 4 + 0x04, list);
    return cell;
  }

  std::uint32_t writeOffsets(const std::vector<std::uint32_t>& offsets) {
    std::uint32_t cell = allocate(4 * offsets.size());
    for (std::size_t i = 0; i < offsets.size(); ++i) put32(cell + 4 + 4 * i, offsets[i]);
    return cell;
  }

  void writeSubKeys(const RegistryKey& key, std::uint32_t cell) {
    std::vector<ListEntry> entries;
    std::size_t longestName = 0;
    for (const auto& subKey : key.subKeys()) {
      entries.push_back({writeKey(*subKey, cell, 0), nameHash(subKey->name())});
      longestName = std::max(longestName, StoredName(subKey->name()).utf16Size());
    }
    std::size_t record = cell + 4;
    put32(record + kKeySubKeys, static_cast<std::uint32_t>(entries.size()));
    put32(record + kKeySubKeyList, entries.empty() ? kNone : writeList(entries));
    put32(record + kKeyMaxSubKeyName, static_cast<std::uint32_t>(longestName));
  }

  std::uint32_t writeList(const std::vector<ListEntry>& entries) {
    if (entries.size() <= kListEntries) return writeLeaf(entries.data(), entries.size());
    std::vector<std::uint32_t> leaves;
    for (std::size_t at = 0; at < entries.size(); at += kListEntries)
      leaves.push_back(writeLeaf(entries.data() + at, std::min(kListEntries, entries.size() - at)));
    std::uint32_t cell = allocate(4 + 4 * leaves.size());
    putBytes(cell + 4, "ri");
    put16(cell + 4 + 0x02, static_cast<std::uint16_t>(leaves.size()));
    for (std::size_t i = 0; i < leaves.size(); ++i) put32(cell + 8 + 4 * i, leaves[i]);
    return cell;
  }

  std::uint32_t writeLeaf(const ListEntry* entries, std::size_t count) {
    std::uint32_t cell = allocate(4 + 8 * count);
    putBytes(cell + 4, "lh");
    put16(cell + 4 + 0x02, static_cast<std::uint16_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
      put32(cell + 8 + 8 * i, entries[i].cell);
      put32(cell + 12 + 8 * i, entries[i].hash);
    }
    return cell;
  }

  // Written whole: both sequence numbers the same, format 1.5.
  void writeBaseBlock(std::uint32_t rootCell) {
    std::memcpy(&hive_[0], "regf", 4);
    putAt(0x04, 1);
    putAt(0x08, 1);
    putAt(0x14, 1);
    putAt(0x18, 5);
    putAt(0x20, 1);
    putAt(0x24, rootCell);
    putAt(0x28, static_cast<std::uint32_t>(end()));
    putAt(0x2C, 1);
    sealBaseBlock(hive_);
  }

  std::string hive_ = std::string(kBaseBlock, '\0');
  std::size_t binEnd_ = 0;
  std::uint32_t security_ = 0;
  std::uint32_t keys_ = 0;
};

}  // namespace

std::string hiveBytes(const RegistryKey& root) { return HiveBuilder().build(root); }

void sealBaseBlock(std::string& hive) {
  constexpr std::size_t kChecksum = 0x1FC;
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < kChecksum; at += 4) sum ^= winapi::littleEndian(hive, at, 4);
  winapi::putLittleEndian(hive, kChecksum, sum, 4);
}

void writeHiveFile(const RegistryKey& root, const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary);
  out << hiveBytes(root);
  if (!out.flush()) throw std::runtime_error(file.string() + ": cannot write");
}

}  // namespace bench
