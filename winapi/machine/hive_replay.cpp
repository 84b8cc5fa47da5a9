// Reading a hive's primary file and its logs for the replay: the base block first, the rest only
// when the hive is dirty.
#include "winapi/machine/hive_replay.h"

#include <fstream>

#include "winapi/formats/hive_log.h"
#include "winapi/machine/host_path.h"
#include "winapi/machine/machine.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

constexpr std::size_t kBaseBlock = 4096;
// Windows keeps a hive, and so its logs, below 2 GiB.
constexpr std::size_t kMaxFileSize = std::size_t{1} << 31;
const char* const kLogSuffixes[] = {".LOG1", ".LOG2"};

// The first `limit` bytes of the file, all of it when it is shorter; nullopt when it cannot be
// read.
std::optional<std::string> readBytes(const fs::path& file, std::size_t limit) {
  std::ifstream in(file, std::ios::binary);
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (!in || error) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(std::min<std::uintmax_t>(size, limit)), '\0');
  if (!in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) return std::nullopt;
  return bytes;
}

// The logs beside the primary that can be read, .LOG1 first.
std::vector<std::string> logsOf(const fs::path& primary) {
  std::vector<std::string> logs;
  for (const char* suffix : kLogSuffixes) {
    const auto file = findEntry(primary.parent_path(), primary.filename().string() + suffix);
    std::optional<std::string> bytes = file ? readBytes(*file, kMaxFileSize) : std::nullopt;
    if (bytes) logs.push_back(std::move(*bytes));
  }
  return logs;
}

}  // namespace

std::optional<std::string> replayedHive(const fs::path& primary,
                                        std::vector<std::string>& warnings) {
  std::optional<std::string> bytes = readBytes(primary, kBaseBlock);
  if (!bytes || !needsReplay(*bytes)) return std::nullopt;
  bytes = readBytes(primary, kMaxFileSize);
  if (!bytes) return std::nullopt;
  const bool intact = hasIntactBaseBlock(*bytes);
  std::optional<std::string> replayed = replayHiveLogs(std::move(*bytes), logsOf(primary));
  if (replayed) return replayed;
  if (!intact)
    throw MachineError(primary.string() +
                       ": base block damaged (its checksum at offset 508 does not hold) and no "
                       "transaction log holds a good copy");
  warnings.push_back(primary.string() +
                     ": dirty hive without usable transaction logs; read as it stands");
  return std::nullopt;
}

}  // namespace winapi
