#include "bench/hive_log_writer.h"

#include <vector>

#include "bench/hive_writer.h"
#include "winapi/formats/marvin32.h"
#include "winapi/support/little_endian.h"

namespace bench {

namespace {

constexpr std::size_t kSector = 512;
constexpr std::size_t kBaseBlock = 4096;
constexpr std::size_t kPage = 4096;
constexpr std::uint64_t kEntrySeed = 0x82EF4D887A4E55C5;

void setSequence(std::string& baseBlock, std::uint32_t primary, std::uint32_t secondary) {
  winapi::putLittleEndian(baseBlock, 4, primary, 4);
  winapi::putLittleEndian(baseBlock, 8, secondary, 4);
  sealBaseBlock(baseBlock);
}

std::uint32_t binsSize(std::string_view hive) { return winapi::littleEndian(hive, 40, 4); }

// One log entry: header, page references, pages, padded to whole sectors.
std::string logEntry(std::string_view after, const std::vector<std::size_t>& pages,
                     std::uint32_t sequence) {
  std::string entry(40 + 8 * pages.size(), '\0');
  entry.replace(0, 4, "HvLE");
  winapi::putLittleEndian(entry, 12, sequence, 4);
  winapi::putLittleEndian(entry, 16, binsSize(after), 4);
  winapi::putLittleEndian(entry, 20, static_cast<std::uint32_t>(pages.size()), 4);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    winapi::putLittleEndian(entry, 40 + 8 * i, static_cast<std::uint32_t>(pages[i]), 4);
    winapi::putLittleEndian(entry, 44 + 8 * i, kPage, 4);
    entry.append(after.substr(kBaseBlock + pages[i], kPage));
  }
  entry.resize((entry.size() + kSector - 1) / kSector * kSector, '\0');
  winapi::putLittleEndian(entry, 4, static_cast<std::uint32_t>(entry.size()), 4);
  winapi::putLittleEndian(entry, 24,
                          winapi::marvin32(std::string_view(entry).substr(40), kEntrySeed), 8);
  winapi::putLittleEndian(entry, 32,
                          winapi::marvin32(std::string_view(entry).substr(0, 32), kEntrySeed), 8);
  return entry;
}

}  // namespace

std::string transactionLog(std::string_view before, std::string_view after, std::uint32_t sequence,
                           std::size_t pagesPerEntry) {
  std::string log(before.substr(0, kSector));
  winapi::putLittleEndian(log, 28, 6, 4);  // a log of entries
  setSequence(log, sequence, sequence);
  const std::size_t bins = binsSize(after);
  std::vector<std::size_t> pages;
  for (std::size_t page = 0; page < bins; page += kPage) {
    if (before.substr(std::min(before.size(), kBaseBlock + page), kPage) !=
        after.substr(kBaseBlock + page, kPage))
      pages.push_back(page);
    if (pages.size() == pagesPerEntry || (page + kPage == bins && !pages.empty())) {
      log += logEntry(after, pages, sequence++);
      pages.clear();
    }
  }
  return log;
}

std::string dirtyPrimary(std::string hive, std::uint32_t sequence) {
  setSequence(hive, sequence + 1, sequence);
  return hive;
}

}  // namespace bench
