// The views that answer the questions asked across machines; the README shows a query of each.
#pragma once

#include <string>
#include <vector>

#include "store/dialect.h"

namespace vrxstore {

struct View {
  std::string name;
  std::string statement;
  // The class table and its columns that the view reads: a store made from a schema without
  // them has no such view until a newer schema adds them.
  std::string table;
  std::vector<std::string> columns;
};

// latest_snapshot: the newest snapshot of each machine; snapshot_step: each snapshot with the one
// taken before it (previous_id). application_now, fix_now: what the newest snapshot of each
// machine holds. application_change, fix_change, account_change, system_variable_change,
// user_variable_change: what changed from each snapshot's previous one to it (change, name,
// from_value, to_value), as `vrxstore diff` tells it (see change_subjects.h).
std::vector<View> views(const Dialect& dialect);

}  // namespace vrxstore
