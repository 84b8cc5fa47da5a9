// Both log formats. Log entries are chained by sequence number from the primary's secondary
// sequence number on, across both logs; each is checked by its two Marvin32 hashes, and the first
// that fails ends the log it is in. A dirty-vector log applies when its base block was written
// with the primary's time stamp; its sectors are written up to the first hive bin that is not one.
// Where the primary's base block is damaged, the log with the latest copy of it is the only source.
#include "winapi/formats/hive_log.h"

#include <algorithm>
#include <cstdint>

#include "winapi/formats/marvin32.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

// Fields of a base block. Its first 508 bytes are covered by the checksum that follows them; a
// log's first sector holds a copy of those 512 bytes.
constexpr std::size_t kPrimarySequence = 4, kSecondarySequence = 8, kTimestamp = 12, kFileType = 28,
                      kBinsSize = 40, kClustering = 44, kFlags = 144, kChecksum = 508;
constexpr std::size_t kSector = 512;
constexpr std::size_t kBaseBlock = 4096;  // before the first hive bin of a primary file
constexpr std::size_t kBinAlignment = 4096;
constexpr std::size_t kMaxClustering = 8;  // sectors of 4096 bytes
constexpr std::uint32_t kPrimaryFile = 0;
// File types of a log's base block: dirty vector (2 as Windows 2000 wrote it), log entries.
constexpr std::uint32_t kDirtyVectorLog = 1, kDirtyVectorLog2000 = 2, kEntryLog = 6;
// Fields of a log entry, after its signature "HvLE".
constexpr std::size_t kEntrySize = 4, kEntryFlags = 8, kEntrySequence = 12, kEntryBinsSize = 16,
                      kEntryPageCount = 20, kEntryDataHash = 24, kEntryHeadHash = 32,
                      kEntryHeader = 40, kPageReference = 8;
constexpr std::uint64_t kEntrySeed = 0x82EF4D887A4E55C5;
// The one flag of the base block that a log entry carries.
constexpr std::uint32_t kLockedFlag = 1;

std::uint32_t number(std::string_view bytes, std::size_t at) { return littleEndian(bytes, at, 4); }

void setNumber(std::string& bytes, std::size_t at, std::uint32_t value) {
  putLittleEndian(bytes, at, value, 4);
}

std::uint32_t xorOfWords(std::string_view baseBlock) {
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < kChecksum; at += 4) sum ^= number(baseBlock, at);
  return sum;
}

// Windows stores 1 for a sum of 0 and 0xFFFFFFFE for 0xFFFFFFFF.
bool isBaseBlock(std::string_view bytes) {
  if (bytes.size() < kSector || bytes.substr(0, 4) != "regf") return false;
  const std::uint32_t sum = xorOfWords(bytes), stored = number(bytes, kChecksum);
  return stored == sum || (sum == 0 && stored == 1) || (sum == 0xFFFFFFFF && stored == 0xFFFFFFFE);
}

enum class LogFormat { kUnusable, kDirtyVector, kEntries };

// A log file as its base block tells it: usable when that block is whole and was written
// completely (both sequence numbers equal).
struct Log {
  std::string_view bytes;
  std::size_t position = 0;  // 0 for .LOG1
  LogFormat format = LogFormat::kUnusable;
  std::uint32_t sequence = 0;
  std::size_t sector = kSector;
};

Log examine(std::string_view bytes, std::size_t position) {
  Log log{bytes, position};
  if (!isBaseBlock(bytes) || number(bytes, kPrimarySequence) != number(bytes, kSecondarySequence))
    return log;
  log.sequence = number(bytes, kPrimarySequence);
  const std::uint32_t type = number(bytes, kFileType), clustering = number(bytes, kClustering);
  if (type == kEntryLog) {
    log.format = LogFormat::kEntries;
  } else if ((type == kDirtyVectorLog || type == kDirtyVectorLog2000) && clustering >= 1 &&
             clustering <= kMaxClustering) {
    log.sector = kSector * clustering;
    if (bytes.size() >= log.sector + 4 && bytes.substr(log.sector, 4) == "DIRT")
      log.format = LogFormat::kDirtyVector;
  }
  return log;
}

// The usable log of that format with the latest base block; the first of equals.
const Log* latestOf(const std::vector<Log>& logs, LogFormat format) {
  const Log* latest = nullptr;
  for (const Log& log : logs)
    if (log.format == format && (!latest || log.sequence > latest->sequence)) latest = &log;
  return latest;
}

// The log's copy of the base block in place of the primary's.
void recoverBaseBlock(std::string& hive, const Log& log) {
  if (hive.size() < kBaseBlock) hive.resize(kBaseBlock);
  hive.replace(0, kSector, log.bytes.substr(0, kSector));
}

// The hive bins take `size` bytes, the file growing to hold them.
void setBinsSize(std::string& hive, std::uint32_t size) {
  if (hive.size() < kBaseBlock + size) hive.resize(kBaseBlock + size);
  setNumber(hive, kBinsSize, size);
}

void setSequence(std::string& hive, std::uint32_t sequence) {
  setNumber(hive, kPrimarySequence, sequence);
  setNumber(hive, kSecondarySequence, sequence);
}

// A count of whole bins, as both formats size the hive bins: never more than the primary and its
// logs could fill.
bool isBinsSize(std::uint32_t size, std::size_t maxBinsSize) {
  return size != 0 && size % kBinAlignment == 0 && size <= maxBinsSize;
}

struct DirtyPage {
  std::size_t offset;  // from the first hive bin
  std::string_view data;
};

struct LogEntry {
  std::size_t size = 0;
  std::uint32_t sequence = 0, binsSize = 0, flags = 0;
  std::size_t log = 0;  // the position of its log
  std::vector<DirtyPage> pages;
};

// The dirty pages the entry lists, when each lies within the entry and within its hive bins.
bool readPages(std::string_view entry, LogEntry& parsed) {
  const std::size_t count = number(entry, kEntryPageCount);
  if (count > (entry.size() - kEntryHeader) / kPageReference) return false;
  std::size_t data = kEntryHeader + kPageReference * count;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t reference = kEntryHeader + kPageReference * i;
    const std::size_t offset = number(entry, reference), length = number(entry, reference + 4);
    if (length == 0 || length % kSector != 0 || offset % kSector != 0 || length > parsed.binsSize ||
        offset > parsed.binsSize - length || length > entry.size() - data)
      return false;
    parsed.pages.push_back({offset, entry.substr(data, length)});
    data += length;
  }
  return true;
}

// The entry at `at` when it is whole: its signature, a size within the log, its hashes, whole
// hive bins and its pages within them.
std::optional<LogEntry> entryAt(const Log& log, std::size_t at, std::size_t maxBinsSize) {
  const std::string_view rest = log.bytes.substr(std::min(at, log.bytes.size()));
  if (rest.size() < kEntryHeader || rest.substr(0, 4) != "HvLE") return std::nullopt;
  LogEntry parsed;
  parsed.size = number(rest, kEntrySize);
  if (parsed.size < kEntryHeader || parsed.size % kSector != 0 || parsed.size > rest.size())
    return std::nullopt;
  const std::string_view entry = rest.substr(0, parsed.size);
  parsed.sequence = number(entry, kEntrySequence);
  parsed.binsSize = number(entry, kEntryBinsSize);
  parsed.flags = number(entry, kEntryFlags);
  parsed.log = log.position;
  if (!isBinsSize(parsed.binsSize, maxBinsSize) ||
      marvin32(entry.substr(kEntryHeader), kEntrySeed) != littleEndian64(entry, kEntryDataHash) ||
      marvin32(entry.substr(0, kEntryHeadHash), kEntrySeed) !=
          littleEndian64(entry, kEntryHeadHash) ||
      !readPages(entry, parsed))
    return std::nullopt;
  return parsed;
}

// The entries of a log from its second sector on, up to the first that is not whole.
void collectEntries(const Log& log, std::size_t maxBinsSize, std::vector<LogEntry>& entries) {
  for (std::size_t at = kSector;;) {
    std::optional<LogEntry> entry = entryAt(log, at, maxBinsSize);
    if (!entry) return;
    at += entry->size;
    entries.push_back(std::move(*entry));
  }
}

void applyEntry(std::string& hive, const LogEntry& entry) {
  setBinsSize(hive, entry.binsSize);
  for (const DirtyPage& page : entry.pages)
    hive.replace(kBaseBlock + page.offset, page.data.size(), page.data);
  setSequence(hive, entry.sequence);
  setNumber(hive, kFlags, (number(hive, kFlags) & ~kLockedFlag) | (entry.flags & kLockedFlag));
}

// Applies the entry numbered `first` or the next above it, then N + 1 after N for as long as
// there is one, from the same log when both logs have it. False when none is numbered so high.
bool applyEntries(std::string& hive, std::vector<LogEntry> entries, std::uint32_t first) {
  // Stable, so that among equal numbers .LOG1's entry comes first.
  std::stable_sort(entries.begin(), entries.end(),
                   [](const LogEntry& a, const LogEntry& b) { return a.sequence < b.sequence; });
  auto at = std::partition_point(entries.begin(), entries.end(),
                                 [&](const LogEntry& entry) { return entry.sequence < first; });
  if (at == entries.end()) return false;
  std::size_t log = at->log;
  for (std::uint32_t sequence = at->sequence; at != entries.end() && at->sequence == sequence;
       ++sequence) {
    auto numbered = [&](const LogEntry& entry) { return entry.sequence != sequence; };
    const auto end = std::find_if(at, entries.end(), numbered);
    auto chosen = std::find_if(at, end, [&](const LogEntry& entry) { return entry.log == log; });
    if (chosen == end) chosen = at;
    applyEntry(hive, *chosen);
    log = chosen->log;
    at = end;
  }
  return true;
}

// `latest` is the log of entries with the latest base block: the only source where the
// primary's own base block is damaged.
bool replayEntries(std::string& hive, const std::vector<Log>& logs, const Log& latest, bool intact,
                   std::size_t maxBinsSize) {
  std::vector<LogEntry> entries;
  if (intact) {
    for (const Log& log : logs)
      if (log.format == LogFormat::kEntries) collectEntries(log, maxBinsSize, entries);
    return applyEntries(hive, std::move(entries), number(hive, kSecondarySequence));
  }
  recoverBaseBlock(hive, latest);
  collectEntries(latest, maxBinsSize, entries);
  applyEntries(hive, std::move(entries), latest.sequence);
  return true;
}

// A dirty sector that starts a hive bin must be one: its own offset and a size of whole bins.
bool isSoundSector(std::string_view sector, std::size_t offset) {
  if (offset % kBinAlignment != 0 || sector.substr(0, 4) != "hbin") return true;
  const std::uint32_t size = number(sector, 8);
  return number(sector, 4) == offset && size != 0 && size % kBinAlignment == 0;
}

// The latest dirty-vector log whose base block was written with the primary's time stamp; any
// where the primary's own base block is damaged.
const Log* dirtyVectorLog(std::string_view hive, const std::vector<Log>& logs, bool intact) {
  const Log* chosen = nullptr;
  for (const Log& log : logs)
    if (log.format == LogFormat::kDirtyVector &&
        (!intact || log.bytes.substr(kTimestamp, 8) == hive.substr(kTimestamp, 8)) &&
        (!chosen || log.sequence > chosen->sequence))
      chosen = &log;
  return chosen;
}

// The dirty sectors follow the bitmap (a bit per sector of hive bins) from the next sector on.
bool replayDirtyVector(std::string& hive, const Log& log, bool intact, std::size_t maxBinsSize) {
  const std::uint32_t binsSize = number(log.bytes, kBinsSize);
  const std::size_t bitmap = log.sector + 4, sectors = binsSize / kSector;
  if (!isBinsSize(binsSize, maxBinsSize) || log.bytes.size() < bitmap + sectors / 8) return false;
  if (!intact) recoverBaseBlock(hive, log);
  setBinsSize(hive, binsSize);
  std::size_t page = (bitmap + sectors / 8 + log.sector - 1) / log.sector * log.sector;
  for (std::size_t bit = 0; bit < sectors; ++bit) {
    if ((static_cast<unsigned char>(log.bytes[bitmap + bit / 8]) >> (bit % 8) & 1) == 0) continue;
    const std::string_view data = log.bytes.substr(std::min(page, log.bytes.size()), kSector);
    if (data.size() < kSector || !isSoundSector(data, bit * kSector)) break;
    hive.replace(kBaseBlock + bit * kSector, kSector, data);
    page += kSector;
  }
  setSequence(hive, log.sequence);
  return true;
}

}  // namespace

bool needsReplay(std::string_view primary) {
  return primary.size() >= kSector && primary.substr(0, 4) == "regf" &&
         (!isBaseBlock(primary) ||
          number(primary, kPrimarySequence) != number(primary, kSecondarySequence));
}

bool hasIntactBaseBlock(std::string_view primary) { return isBaseBlock(primary); }

std::optional<std::string> replayHiveLogs(std::string primary,
                                          const std::vector<std::string>& logFiles) {
  std::vector<Log> logs;
  std::size_t maxBinsSize = primary.size();
  for (std::size_t i = 0; i < logFiles.size(); ++i) {
    logs.push_back(examine(logFiles[i], i));
    maxBinsSize += logFiles[i].size();
  }
  const bool intact = isBaseBlock(primary);
  bool replayed = false;
  if (const Log* entryLog = latestOf(logs, LogFormat::kEntries))
    replayed = replayEntries(primary, logs, *entryLog, intact, maxBinsSize);
  else if (const Log* vectorLog = dirtyVectorLog(primary, logs, intact))
    replayed = replayDirtyVector(primary, *vectorLog, intact, maxBinsSize);
  if (!replayed) return std::nullopt;
  setNumber(primary, kFileType, kPrimaryFile);
  // The plain sum, as libhivex checks it.
  setNumber(primary, kChecksum, xorOfWords(primary));
  return primary;
}

}  // namespace winapi
