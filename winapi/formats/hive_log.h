// A registry hive's transaction logs (.LOG1, .LOG2) replayed over the bytes of its primary file,
// as Windows recovers a hive whose last write did not reach the primary: the log entries of
// Windows 8.1 and later, or the dirty vector and dirty sectors of Windows XP to 8. Only bytes in
// memory are changed.
#ifndef VRX_WINAPI_HIVE_LOG_H
#define VRX_WINAPI_HIVE_LOG_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace winapi {

// The primary file begins with a base block ("regf") whose sequence numbers (offsets 4 and 8)
// differ or whose checksum (offset 508) is wrong. Bytes that are no hive at all do not.
bool needsReplay(std::string_view primary);
// The base block carries its signature and a checksum that holds.
bool hasIntactBaseBlock(std::string_view primary);

// `primary` with the logs (in the order .LOG1, .LOG2) applied: a damaged base block replaced by
// a log's copy, the dirty pages written, the hive grown as the logs say and its base block made
// clean. A damaged log counts up to its last valid entry. nullopt when no log applies.
std::optional<std::string> replayHiveLogs(std::string primary,
                                          const std::vector<std::string>& logs);

}  // namespace winapi

#endif
