#include "store/changes.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "store/change_subjects.h"

namespace vrxstore {
namespace {

using Values = std::map<std::string, std::set<std::string>>;

Values valuesOf(Database& database, const ChangeSubject& subject, const std::string& machine,
                const std::string& snapshot) {
  Values values;
  const std::string sql = std::string("SELECT ") + subject.key + ", " + valueOf(subject, "") +
                          " FROM " + subject.table + " WHERE machine_key = ? AND snapshot_id = ?";
  for (const Row& row : database.query(sql, {machine, snapshot}))
    values[row[0].value_or("")].insert(row[1].value_or(""));
  return values;
}

std::string joined(const std::set<std::string>& values) {
  std::string text;
  for (const std::string& value : values) text += (text.empty() ? "" : ", ") + value;
  return text;
}

void compare(const ChangeSubject& subject, const Values& before, const Values& after,
             std::vector<Change>& changes) {
  std::set<std::string> names;
  for (const auto& entry : before) names.insert(entry.first);
  for (const auto& entry : after) names.insert(entry.first);
  for (const std::string& name : names) {
    const auto was = before.find(name), is = after.find(name);
    if (was == before.end())
      changes.push_back({subject.name, "added", name, "", joined(is->second)});
    else if (is == after.end())
      changes.push_back({subject.name, "removed", name, joined(was->second), ""});
    else if (was->second != is->second)
      changes.push_back({subject.name, "changed", name, joined(was->second), joined(is->second)});
  }
}

std::vector<std::string> snapshotsOf(Database& database, const std::string& machine) {
  std::vector<std::string> ids;
  for (const Row& row : database.query("SELECT snapshot_id FROM snapshot WHERE machine_key = ? "
                                       "ORDER BY taken_at, snapshot_id",
                                       {machine}))
    ids.push_back(*row[0]);
  return ids;
}

}  // namespace

SnapshotPair snapshotsToCompare(Database& database, const std::string& machine,
                                const std::optional<std::string>& from,
                                const std::optional<std::string>& to) {
  const auto ids = snapshotsOf(database, machine);
  auto known = [&](const std::string& id) {
    if (std::find(ids.begin(), ids.end(), id) == ids.end())
      throw std::runtime_error("no snapshot " + id + " of machine " + machine);
    return id;
  };
  if (ids.empty()) throw std::runtime_error("no snapshot of machine " + machine);
  const std::string last = to ? known(*to) : ids.back();
  if (from) return {known(*from), last};
  const auto position = std::find(ids.begin(), ids.end(), last);
  if (position == ids.begin())
    throw std::runtime_error("machine " + machine + " has no snapshot before " + last);
  return {*(position - 1), last};
}

std::vector<Change> changesBetween(Database& database, const std::string& machine,
                                   const SnapshotPair& snapshots) {
  std::vector<Change> changes;
  for (const ChangeSubject& subject : changeSubjects())
    compare(subject, valuesOf(database, subject, machine, snapshots.from),
            valuesOf(database, subject, machine, snapshots.to), changes);
  return changes;
}

}  // namespace vrxstore
