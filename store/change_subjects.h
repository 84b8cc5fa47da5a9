// What a change between two snapshots is told about: the rows of a class table, each told apart
// by one column, their value made of others. `vrxstore diff` and the change views both read it.
#pragma once

#include <string>
#include <vector>

namespace vrxstore {

struct ChangeSubject {
  std::string name;   // "application", "fix", "account", "system variable", "user variable"
  std::string table;  // the class table
  std::string key;    // the column that tells rows apart
  // An SQL expression of the row's columns, each written "$.column"; see valueOf.
  std::string value;
  // Every column `key` and `value` read: a store made from a schema without one of them has no
  // view of this subject.
  std::vector<std::string> columns;
};

const std::vector<ChangeSubject>& changeSubjects();

// The subject's value read from the row named `alias` in a query ("" for the one table queried).
std::string valueOf(const ChangeSubject& subject, const std::string& alias);

}  // namespace vrxstore
