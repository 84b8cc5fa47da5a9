// Transaction logs in the format of Windows 8.1 and later, as Windows writes them while a hive
// changes: the base block as it stood, then log entries of dirty pages. Made to replay large
// dirty hives without a Windows machine to crash.
#ifndef VRX_BENCH_HIVE_LOG_WRITER_H
#define VRX_BENCH_HIVE_LOG_WRITER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace bench {

// The log that takes the hive `before` to `after` (no smaller): the 4096-byte pages of `after`'s
// hive bins that differ from `before`'s, `pagesPerEntry` to an entry, the entries numbered from
// `sequence` on.
std::string transactionLog(std::string_view before, std::string_view after, std::uint32_t sequence,
                           std::size_t pagesPerEntry);

// `hive` as Windows leaves it while a write is under way: its sequence numbers `sequence + 1`
// and `sequence`.
std::string dirtyPrimary(std::string hive, std::uint32_t sequence);

}  // namespace bench

#endif
