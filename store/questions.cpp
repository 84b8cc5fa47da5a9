#include "store/questions.h"

#include <stdexcept>

#include "store/version_order.h"

namespace vrxstore {
namespace {

struct Question {
  const char* name;
  const char* arguments;
  std::size_t least, most;
  Answer (*run)(Database&, const std::vector<std::string>&);
};

std::vector<std::vector<std::string>> textRows(const std::vector<Row>& rows) {
  std::vector<std::vector<std::string>> text;
  for (const Row& row : rows) {
    std::vector<std::string> cells;
    for (const auto& cell : row) cells.push_back(cell.value_or(""));
    text.push_back(std::move(cells));
  }
  return text;
}

Answer latest(Database& database, const std::vector<std::string>&) {
  return {{"machine", "snapshot", "taken at"},
          textRows(database.query("SELECT machine_key, snapshot_id, taken_at FROM "
                                  "latest_snapshot ORDER BY machine_key",
                                  {}))};
}

Answer applications(Database& database, const std::vector<std::string>& arguments) {
  const std::string sql =
      "SELECT machine_key, productname, productversion, productvendor FROM application_now" +
      std::string(arguments.empty() ? "" : " WHERE machine_key = ?") + " ORDER BY 1, 2, 3";
  const Parameters parameters(arguments.begin(), arguments.end());
  return {{"machine", "product", "version", "vendor"}, textRows(database.query(sql, parameters))};
}

Answer withoutFix(Database& database, const std::vector<std::string>& arguments) {
  return {{"machine"},
          textRows(database.query(
              "SELECT l.machine_key FROM latest_snapshot l WHERE NOT EXISTS (SELECT 1 FROM "
              "fix_now f WHERE f.machine_key = l.machine_key AND f.fix_id = ?) ORDER BY 1",
              {arguments[0]}))};
}

Answer neverLoggedOn(Database& database, const std::vector<std::string>&) {
  return {{"machine", "account", "domain"},
          textRows(database.query(
              "SELECT a.machine_key, a.name, a.domain FROM qelto_account a JOIN latest_snapshot l "
              "ON l.machine_key = a.machine_key AND l.snapshot_id = a.snapshot_id WHERE "
              "a.lastlogon_cim IS NULL ORDER BY 1, 2",
              {}))};
}

// Versions are compared here, not in SQL: neither engine compares them part by part.
Answer below(Database& database, const std::vector<std::string>& arguments) {
  Answer answer{{"machine", "product", "version"}, {}};
  for (auto& row :
       textRows(database.query("SELECT machine_key, productname, productversion FROM "
                               "application_now WHERE productname LIKE ? ORDER BY 1, 2, 3",
                               {arguments[0]})))
    if (compareVersions(row[2], arguments[1]) < 0) answer.rows.push_back(std::move(row));
  return answer;
}

const Question kQuestions[] = {
    {"latest", "", 0, 0, latest},
    {"applications", "[MACHINE]", 0, 1, applications},
    {"without-fix", "FIX", 1, 1, withoutFix},
    {"below", "PRODUCT VERSION", 2, 2, below},
    {"never-logged-on", "", 0, 0, neverLoggedOn},
};

}  // namespace

Answer ask(Database& database, const std::string& name, const std::vector<std::string>& arguments) {
  for (const Question& question : kQuestions) {
    if (name != question.name) continue;
    if (arguments.size() < question.least || arguments.size() > question.most)
      throw std::invalid_argument("query " + name + " takes " +
                                  (*question.arguments ? question.arguments : "no arguments"));
    return question.run(database, arguments);
  }
  throw std::invalid_argument("no question named " + name + "; the questions:\n" +
                              questionsUsage());
}

std::string questionsUsage() {
  std::string usage;
  for (const Question& question : kQuestions)
    usage += std::string("  ") + question.name + (*question.arguments ? " " : "") +
             question.arguments + "\n";
  return usage;
}

}  // namespace vrxstore
