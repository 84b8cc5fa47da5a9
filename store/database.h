// A connection to one SQL engine: the few operations the store needs, each engine behind it.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/dialect.h"
#include "store/snapshot.h"

namespace vrxstore {

// A fault of the engine or the connection; `what` is one line naming the target.
struct DatabaseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Row = std::vector<std::optional<std::string>>;
using Parameters = std::vector<std::optional<std::string>>;

class Database {
 public:
  virtual ~Database() = default;
  virtual const Dialect& dialect() const = 0;
  // Runs statements that return nothing (DDL, BEGIN, COMMIT).
  virtual void execute(const std::string& sql) = 0;
  // Runs a statement with its parameters written "?", and gives back its rows as text.
  virtual std::vector<Row> query(const std::string& sql, const Parameters& parameters) = 0;
  // Appends `rows` to `table`, each row in the order of `columns`.
  virtual void insert(const Table& table, const std::vector<std::vector<Cell>>& rows) = 0;
  // The names of the columns `table` has now; empty when there is no such table.
  virtual std::set<std::string> columnsOf(const std::string& table) = 0;
};

// Whether a SQLite file that is not there is made (to load into) or an error (to ask).
enum class Missing { Create, Refuse };

// Opens the engine that `target` names: "postgresql://…" or "postgres://…" (a libpq connection
// URI), "sqlite:PATH", or a file path. Throws DatabaseError, or std::invalid_argument for an
// empty target.
std::unique_ptr<Database> openDatabase(const std::string& target,
                                       Missing missing = Missing::Create);

std::unique_ptr<Database> openSqlite(const std::string& path, Missing missing);
std::unique_ptr<Database> openPostgres(const std::string& uri);

}  // namespace vrxstore
