// The same cases against each engine: a SQLite file in a temporary folder, and a new database
// on the PostgreSQL server the tests started.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "store/store.h"
#include "tests/store/postgres_server.h"
#include "vrxcore/mof_loader.h"

namespace storetest {

namespace fs = std::filesystem;

inline std::string readText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

inline void writeText(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

inline boost::shared_ptr<NZARVEK20::TRepositoryNamespace> loadSchema(const std::string& mof) {
  auto ns = NZARVEK20::TRepositoryNamespace::Create("root/qelto");
  NZARVEK20::LoadMofFile(*ns, mof);
  return ns;
}

class EngineTest : public ::testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : name)
      if (c == '/') c = '_';
    dir = fs::temp_directory_path() / ("store_test_" + std::to_string(::getpid()) + "_" + name);
    fs::remove_all(dir);
    fs::create_directories(dir);
    if (GetParam() == "sqlite") {
      target = (dir / "fleet.db").string();
    } else {
      PostgresServer* server = PostgresServer::instance();
      if (!server) GTEST_SKIP() << "PostgreSQL's server programs are not in " << kPostgresBin;
      target = server->freshDatabase();
    }
  }
  void TearDown() override { fs::remove_all(dir); }

  // A store of `target` made from the schema in `mof`.
  std::unique_ptr<vrxstore::Store> openStore(const std::string& mof = VRX_SCHEMA_FILE) {
    schema = loadSchema(mof);
    return std::make_unique<vrxstore::Store>(vrxstore::openDatabase(target), *schema);
  }

  std::string one(vrxstore::Database& db, const std::string& sql,
                  const vrxstore::Parameters& parameters = {}) {
    const auto rows = db.query(sql, parameters);
    return rows.empty() || !rows[0][0] ? "(null)" : *rows[0][0];
  }

  fs::path dir;
  std::string target;
  boost::shared_ptr<NZARVEK20::TRepositoryNamespace> schema;
};

// Test names with the engine: "Engines/StoreTest.X/sqlite".
inline std::string engineName(const ::testing::TestParamInfo<std::string>& info) {
  return info.param;
}

#define STORE_ENGINES(Suite)                                                          \
  INSTANTIATE_TEST_SUITE_P(Engines, Suite, ::testing::Values("sqlite", "postgresql"), \
                           storetest::engineName)

}  // namespace storetest
