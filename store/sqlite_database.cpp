// SQLite through libsqlite3: prepared statements, WAL so that readers query while a loader
// writes, and a busy timeout so that writers wait for each other instead of failing.
#include <sqlite3.h>

#include <cstring>

#include "store/database.h"

namespace vrxstore {
namespace {

constexpr int kBusyTimeoutMs = 30000;

// SQLite's text of the last error, with the system's when a file operation failed ("disk I/O
// error (File too large)").
std::string errorText(sqlite3* db) {
  std::string text = sqlite3_errmsg(db);
  if (const int code = sqlite3_system_errno(db);
      code && (sqlite3_errcode(db) & 0xff) == SQLITE_IOERR)
    text += std::string(" (") + std::strerror(code) + ")";
  return text;
}

class Statement {
 public:
  Statement(sqlite3* db, const std::string& sql) : db_(db) {
    if (sqlite3_prepare_v2(db, sql.c_str(), int(sql.size()), &statement_, nullptr) != SQLITE_OK)
      throw DatabaseError(errorText(db));
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void bind(int index, const Cell& cell) {
    switch (cell.kind) {
      case Cell::Kind::Null:
        sqlite3_bind_null(statement_, index);
        break;
      case Cell::Kind::Integer:
      case Cell::Kind::Boolean:
        sqlite3_bind_int64(statement_, index, cell.integer);
        break;
      case Cell::Kind::Real:
        sqlite3_bind_double(statement_, index, cell.real);
        break;
      case Cell::Kind::Array:
        bindText(index, cell.array.dump());
        break;
      default:
        bindText(index, cell.text);
    }
  }
  void bindText(int index, const std::string& text) {
    sqlite3_bind_text(statement_, index, text.data(), int(text.size()), SQLITE_TRANSIENT);
  }
  // True while there is a row to read.
  bool step() {
    const int status = sqlite3_step(statement_);
    if (status == SQLITE_ROW) return true;
    if (status != SQLITE_DONE) throw DatabaseError(errorText(db_));
    return false;
  }
  Row row() const {
    Row row;
    for (int i = 0; i < sqlite3_column_count(statement_); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, i));
      row.push_back(text ? std::optional<std::string>(text) : std::nullopt);
    }
    return row;
  }
  void reset() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }

 private:
  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
};

class SqliteDatabase : public Database {
 public:
  SqliteDatabase(const std::string& path, Missing missing) : path_(path) {
    const int flags = SQLITE_OPEN_READWRITE | (missing == Missing::Create ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(path.c_str(), &db_, flags, nullptr) != SQLITE_OK) {
      const std::string message = db_ ? sqlite3_errmsg(db_) : "out of memory";
      sqlite3_close(db_);
      throw DatabaseError(path + ": " + message);
    }
    sqlite3_busy_timeout(db_, kBusyTimeoutMs);
    execute("PRAGMA journal_mode=WAL");
    // In WAL mode a commit stays atomic without a sync per transaction; a power cut may lose the
    // last snapshots whole, never half of one.
    execute("PRAGMA synchronous=NORMAL");
  }
  ~SqliteDatabase() override { sqlite3_close(db_); }

  const Dialect& dialect() const override { return sqliteDialect(); }

  void execute(const std::string& sql) override {
    char* error = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
      const std::string message = errorText(db_);
      sqlite3_free(error);
      throw DatabaseError(path_ + ": " + message);
    }
  }

  std::vector<Row> query(const std::string& sql, const Parameters& parameters) override {
    try {
      Statement statement(db_, sql);
      for (std::size_t i = 0; i < parameters.size(); ++i)
        statement.bind(int(i + 1),
                       parameters[i] ? Cell{Cell::Kind::Text, 0, 0, *parameters[i], {}} : Cell{});
      std::vector<Row> rows;
      while (statement.step()) rows.push_back(statement.row());
      return rows;
    } catch (const DatabaseError& e) {
      throw DatabaseError(path_ + ": " + e.what());
    }
  }

  void insert(const Table& table, const std::vector<std::vector<Cell>>& rows) override {
    std::string names, marks;
    for (const Column& column : table.columns) {
      names += (names.empty() ? "\"" : ", \"") + column.name + "\"";
      marks += marks.empty() ? "?" : ", ?";
    }
    try {
      Statement statement(
          db_, "INSERT INTO \"" + table.name + "\" (" + names + ") VALUES (" + marks + ")");
      for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) statement.bind(int(i + 1), row[i]);
        statement.step();
        statement.reset();
      }
    } catch (const DatabaseError& e) {
      throw DatabaseError(path_ + ": " + e.what());
    }
  }

  std::set<std::string> columnsOf(const std::string& table) override {
    std::set<std::string> columns;
    for (const Row& row : query("SELECT name FROM pragma_table_info(?)", {table}))
      columns.insert(*row[0]);
    return columns;
  }

 private:
  std::string path_;
  sqlite3* db_ = nullptr;
};

}  // namespace

std::unique_ptr<Database> openSqlite(const std::string& path, Missing missing) {
  return std::make_unique<SqliteDatabase>(path, missing);
}

}  // namespace vrxstore
