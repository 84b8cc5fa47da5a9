// Reading a hive's primary file and its logs for the replay: the base block first, the rest only
// when the hive is dirty.
#include "winapi/machine/hive_replay.h"

#include "winapi/formats/hive_log.h"
#include "winapi/support/errors.h"
#include "winapi/support/file_descriptor.h"

namespace winapi {

namespace {

constexpr std::size_t kBaseBlock = 4096;
// Windows keeps a hive, and so its logs, below 2 GiB.
constexpr std::size_t kMaxFileSize = std::size_t{1} << 31;
const char* const kLogSuffixes[] = {".LOG1", ".LOG2"};

// The logs beside the primary that can be read, .LOG1 first.
std::vector<std::string> logsOf(const HiveLocation& hive) {
  std::vector<std::string> logs;
  for (const char* suffix : kLogSuffixes) {
    FileDescriptor log = hive.files.open(hive.path + suffix);
    std::optional<std::string> bytes = readFileBytes(log.get(), kMaxFileSize);
    if (bytes) logs.push_back(std::move(*bytes));
  }
  return logs;
}

}  // namespace

std::optional<std::string> replayedHive(const HiveLocation& hive, int primary,
                                        std::vector<std::string>& warnings) {
  std::optional<std::string> bytes = readFileBytes(primary, kBaseBlock);
  if (!bytes || !needsReplay(*bytes)) return std::nullopt;
  bytes = readFileBytes(primary, kMaxFileSize);
  if (!bytes) return std::nullopt;
  const bool intact = hasIntactBaseBlock(*bytes);
  std::optional<std::string> replayed = replayHiveLogs(std::move(*bytes), logsOf(hive));
  if (replayed) return replayed;
  if (!intact)
    throw MachineError(hive.describe() +
                       ": base block damaged (its checksum at offset 508 does not hold) and no "
                       "transaction log holds a good copy");
  warnings.push_back(hive.describe() +
                     ": dirty hive without usable transaction logs; read as it stands");
  return std::nullopt;
}

}  // namespace winapi
