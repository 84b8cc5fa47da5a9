#include "tools/vrxstore/report.h"

#include <iostream>

#include "store/changes.h"
#include "store/questions.h"

namespace vrxstore {
namespace {

void writeAnswer(const Answer& answer, const Options& options) {
  if (options.format == "json")
    writeJson(std::cout, answer);
  else
    writeTable(std::cout, answer);
}

}  // namespace

void writeDiff(Database& database, const Options& options) {
  const SnapshotPair snapshots =
      snapshotsToCompare(database, options.machine, options.from, options.to);
  Answer answer{{"what", "change", "name", "from", "to"}, {}};
  for (const Change& change : changesBetween(database, options.machine, snapshots))
    answer.rows.push_back({change.subject, change.change, change.name, change.from, change.to});
  if (options.format == "json") {
    const nlohmann::json diff = {{"machine", options.machine},
                                 {"from", snapshots.from},
                                 {"to", snapshots.to},
                                 {"changes", jsonOf(answer)}};
    std::cout << diff.dump(2) << '\n';
    return;
  }
  std::cout << options.machine << ": snapshot " << snapshots.from << " to " << snapshots.to << "\n";
  writeTable(std::cout, answer);
}

void writeQuery(Database& database, const Options& options) {
  writeAnswer(ask(database, options.question, options.arguments), options);
}

}  // namespace vrxstore
