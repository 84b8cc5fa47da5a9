// What changed on a machine between two of its snapshots.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/database.h"

namespace vrxstore {

struct Change {
  std::string subject;  // "application", "fix", "account", "system variable", "user variable"
  std::string change;   // "added", "removed", "changed"
  std::string name;
  std::string from;  // the value before; empty when added
  std::string to;    // the value after; empty when removed
};

struct SnapshotPair {
  std::string from;
  std::string to;
};

// The snapshots to compare: those given, else TO the machine's newest and FROM the one before
// TO. Throws std::runtime_error naming the machine when it has no such snapshots.
SnapshotPair snapshotsToCompare(Database& database, const std::string& machine,
                                const std::optional<std::string>& from,
                                const std::optional<std::string>& to);

// The changes from one snapshot to the other, by subject, then name.
std::vector<Change> changesBetween(Database& database, const std::string& machine,
                                   const SnapshotPair& snapshots);

}  // namespace vrxstore
