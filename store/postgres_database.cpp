// PostgreSQL through libpq: rows go in by COPY, the engine's bulk path.
#include <libpq-fe.h>

#include "store/database.h"
#include "store/postgres_text.h"

namespace vrxstore {
namespace {

// The text of libpq's last error, on one line.
std::string oneLine(std::string message) {
  while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
  std::string line;
  for (char c : message) {
    if (c == '\n' || c == '\t') c = ' ';
    if (c != ' ' || line.empty() || line.back() != ' ') line += c;
  }
  return line;
}

class Result {
 public:
  explicit Result(PGresult* result) : result_(result) {}
  ~Result() { PQclear(result_); }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
  PGresult* get() const { return result_; }
  ExecStatusType status() const { return PQresultStatus(result_); }

 private:
  PGresult* result_;
};

class PostgresDatabase : public Database {
 public:
  explicit PostgresDatabase(const std::string& uri) : connection_(PQconnectdb(uri.c_str())) {
    if (PQstatus(connection_) != CONNECTION_OK) {
      const std::string message = oneLine(PQerrorMessage(connection_));
      PQfinish(connection_);
      // The URI may carry a password: the message names the server as libpq does, not the URI.
      throw DatabaseError("PostgreSQL: " + message);
    }
    execute("SET client_min_messages = warning");
  }
  ~PostgresDatabase() override { PQfinish(connection_); }

  const Dialect& dialect() const override { return postgresDialect(); }

  void execute(const std::string& sql) override {
    const Result result(PQexec(connection_, sql.c_str()));
    check(result, PGRES_COMMAND_OK, PGRES_TUPLES_OK);
  }

  std::vector<Row> query(const std::string& sql, const Parameters& parameters) override {
    std::vector<const char*> values;
    for (const auto& parameter : parameters)
      values.push_back(parameter ? parameter->c_str() : nullptr);
    const Result result(PQexecParams(connection_, numberedParameters(sql).c_str(),
                                     int(values.size()), nullptr, values.data(), nullptr, nullptr,
                                     0));
    check(result, PGRES_TUPLES_OK, PGRES_COMMAND_OK);
    std::vector<Row> rows;
    for (int r = 0; r < PQntuples(result.get()); ++r) {
      Row row;
      for (int c = 0; c < PQnfields(result.get()); ++c)
        row.push_back(PQgetisnull(result.get(), r, c)
                          ? std::nullopt
                          : std::optional<std::string>(PQgetvalue(result.get(), r, c)));
      rows.push_back(std::move(row));
    }
    return rows;
  }

  void insert(const Table& table, const std::vector<std::vector<Cell>>& rows) override {
    std::string names;
    for (const Column& column : table.columns)
      names += (names.empty() ? "\"" : ", \"") + column.name + "\"";
    {
      const Result start(
          PQexec(connection_, ("COPY \"" + table.name + "\" (" + names + ") FROM STDIN").c_str()));
      check(start, PGRES_COPY_IN, PGRES_COPY_IN);
    }
    std::string data;
    for (const auto& row : rows) appendCopyRow(data, row);
    if (PQputCopyData(connection_, data.data(), int(data.size())) != 1 ||
        PQputCopyEnd(connection_, nullptr) != 1)
      throw DatabaseError("PostgreSQL: " + oneLine(PQerrorMessage(connection_)));
    const Result end(PQgetResult(connection_));
    check(end, PGRES_COMMAND_OK, PGRES_COMMAND_OK);
    while (PGresult* rest = PQgetResult(connection_)) PQclear(rest);
  }

  std::set<std::string> columnsOf(const std::string& table) override {
    std::set<std::string> columns;
    for (const Row& row : query("SELECT column_name FROM information_schema.columns WHERE "
                                "table_schema = current_schema() AND table_name = ?",
                                {table}))
      columns.insert(*row[0]);
    return columns;
  }

 private:
  void check(const Result& result, ExecStatusType expected, ExecStatusType alsoGood) {
    if (result.status() != expected && result.status() != alsoGood)
      throw DatabaseError("PostgreSQL: " + oneLine(PQerrorMessage(connection_)));
  }

  PGconn* connection_;
};

}  // namespace

std::unique_ptr<Database> openPostgres(const std::string& uri) {
  return std::make_unique<PostgresDatabase>(uri);
}

}  // namespace vrxstore
