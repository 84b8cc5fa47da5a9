// Hive files made at test time: an empty hive from the benchmarks' hive writer, filled from .reg
// text by hivexregedit.
#ifndef VRX_TESTS_WINAPI_TEST_HIVE_H
#define VRX_TESTS_WINAPI_TEST_HIVE_H

#include <cstdint>
#include <string>

namespace winapi {

// The bytes of a valid hive with one empty root key.
std::string emptyHive();

// Sets the 32-bit field of the base block at `at`, its checksum made to hold again.
void patchBaseBlock(std::string& hive, std::size_t at, std::uint32_t value);

// Writes a hive at `file` holding the keys of `regText` (REGEDIT4 text whose keys start with
// `prefix`, e.g. "HKEY_LOCAL_MACHINE\\SOFTWARE"; missing parent keys are made). Fails the test
// when hivexregedit does.
void writeHive(const std::string& file, const std::string& prefix, const std::string& regText);

}  // namespace winapi

#endif
