// A real PostgreSQL server of Debian's postgresql package, started in a temporary folder on a
// free port of 127.0.0.1 for the tests of one program and stopped at its end. As root, the
// server runs as the unprivileged user "nobody", as PostgreSQL requires.
#pragma once

#include <string>

namespace storetest {

class PostgresServer {
 public:
  // Starts the server at the first call; "" when its programs are not installed.
  static PostgresServer* instance();
  // A URI of a new, empty database on the server.
  std::string freshDatabase();
  ~PostgresServer();

 private:
  PostgresServer() = default;
  bool start();

  std::string folder_;
  int port_ = 0;
  int databases_ = 0;
};

// Where the server's programs are; the tests skip PostgreSQL's cases when they are absent.
extern const char* const kPostgresBin;

}  // namespace storetest
