// Writes a registry tree held in memory as a hive file (regf, format 1.5), as Windows lays one
// out: one hive bin after another, sub-key lists sorted by upper-cased name and split under an
// index root when long, small data inline, large data in segments. Every key shares one
// security descriptor. Made for offline volumes of any size without merging key by key.
#ifndef VRX_BENCH_HIVE_WRITER_H
#define VRX_BENCH_HIVE_WRITER_H

#include <filesystem>
#include <string>

#include "winapi/support/registry_store.h"

namespace bench {

// The bytes of a hive whose root key is `root` (its name kept) with everything below it.
std::string hiveBytes(const winapi::RegistryKey& root);

// hiveBytes(root) written to `file`; throws std::runtime_error when it cannot be written.
void writeHiveFile(const winapi::RegistryKey& root, const std::filesystem::path& file);

// Makes the checksum of the base block at the start of `hive` (offset 508) hold for the 508 bytes
// before it again, after some of them were changed.
void sealBaseBlock(std::string& hive);

}  // namespace bench

#endif
