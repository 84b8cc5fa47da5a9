// The tables made from the class definitions, for each engine.
#include "store/table_schema.h"

#include <gtest/gtest.h>

#include "tests/store/engine_fixture.h"

namespace {

using namespace vrxstore;

const Column* find(const Table& table, const std::string& name) {
  for (const Column& column : table.columns)
    if (column.name == name) return &column;
  return nullptr;
}

const Table& tableOf(const std::vector<Table>& tables, const std::string& name) {
  for (const Table& table : tables)
    if (table.name == name) return table;
  throw std::runtime_error("no table " + name);
}

TEST(TableSchema, OneTablePerConcreteClassWithTypedColumns) {
  auto schema = storetest::loadSchema(VRX_SCHEMA_FILE);
  const auto tables = classTables(*schema);
  for (const Table& table : tables) {
    EXPECT_EQ(table.columns.front().name, "machine_key") << table.name;
    EXPECT_NE(table.name, "qelto_environmentvariable") << "an abstract class has no table";
  }
  // Inherited properties reach the subclass's table.
  EXPECT_TRUE(find(tableOf(tables, "qelto_systemenvironmentvariable"), "settingvalue"));

  const Table& os = tableOf(tables, "qelto_operatingsystem");
  EXPECT_EQ(find(os, "freevirtualmemory")->kind, ColumnKind::Unsigned64);
  EXPECT_EQ(find(os, "ostype")->kind, ColumnKind::SmallInteger);
  EXPECT_EQ(find(os, "handlecount")->kind, ColumnKind::Integer) << "uint32 needs 64 bits signed";
  EXPECT_EQ(find(os, "bootconfigurationfilecontents")->kind, ColumnKind::TextArray);
  // A date-time: the timestamp, the interval's seconds and the CIM text.
  EXPECT_EQ(find(os, "uptime")->kind, ColumnKind::Timestamp);
  EXPECT_EQ(find(os, "uptime_seconds")->kind, ColumnKind::Seconds);
  EXPECT_EQ(find(os, "uptime_cim")->source, ColumnSource::CimText);
  // A reference: the path, and the place of the instance it names.
  const Table& association = tableOf(tables, "qelto_accountonsystem");
  EXPECT_EQ(find(association, "partcomponent_position")->source, ColumnSource::Target);

  for (const Dialect* dialect : {&sqliteDialect(), &postgresDialect()})
    for (int kind = 0; kind < static_cast<int>(ColumnKind::Count); ++kind)
      EXPECT_NE(dialect->types[kind], nullptr) << dialect->name << " has no type for kind " << kind;

  const auto postgres = createStatements(tables, postgresDialect());
  const auto sqlite = createStatements(tables, sqliteDialect());
  ASSERT_EQ(postgres.size(), sqlite.size());
  const auto osTable = [&](const std::vector<std::string>& statements) {
    for (const std::string& statement : statements)
      if (statement.find("\"qelto_operatingsystem\"") != std::string::npos) return statement;
    return std::string();
  };
  EXPECT_NE(osTable(postgres).find("\"freevirtualmemory\" numeric(20)"), std::string::npos);
  EXPECT_NE(osTable(postgres).find("\"bootconfigurationfilecontents\" text[]"), std::string::npos);
  EXPECT_NE(osTable(sqlite).find("\"freevirtualmemory\","), std::string::npos)
      << "no type, so that SQLite keeps every uint64 exact";
}

}  // namespace
