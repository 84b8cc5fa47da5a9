#include "tests/store/postgres_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "store/database.h"

namespace storetest {

const char* const kPostgresBin = "/usr/lib/postgresql/15/bin";

namespace {

namespace fs = std::filesystem;

const char* const kUser = "nobody";

// A port nobody listens on now: the system picks it for a socket bound to port 0.
int freePort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  ::close(fd);
  return ntohs(address.sin_port);
}

// `command` run as the server's user when the tests run as root.
int runAsServerUser(const std::string& command) {
  const std::string line =
      (::getuid() == 0 ? std::string("runuser -u ") + kUser + " -- " : std::string()) + command;
  return std::system(line.c_str());
}

}  // namespace

PostgresServer* PostgresServer::instance() {
  static std::unique_ptr<PostgresServer> server = [] {
    std::unique_ptr<PostgresServer> made(new PostgresServer);
    return made->start() ? std::move(made) : nullptr;
  }();
  return server.get();
}

bool PostgresServer::start() {
  if (!fs::exists(fs::path(kPostgresBin) / "pg_ctl")) return false;
  char pattern[] = "/tmp/vrx_postgres_XXXXXX";
  folder_ = ::mkdtemp(pattern);
  if (::getuid() == 0 && std::system(("chown " + std::string(kUser) + " " + folder_).c_str()) != 0)
    throw std::runtime_error("cannot give " + folder_ + " to " + kUser);
  port_ = freePort();
  const std::string bin = kPostgresBin;
  const std::string data = folder_ + "/data";
  if (runAsServerUser(bin + "/initdb -D " + data + " -A trust -U vrx >" + folder_ +
                      "/initdb.log 2>&1") != 0)
    throw std::runtime_error("initdb failed, see " + folder_ + "/initdb.log");
  if (runAsServerUser(bin + "/pg_ctl -D " + data + " -l " + folder_ + "/server.log -w -o \"-p " +
                      std::to_string(port_) + " -k " + folder_ +
                      " -c listen_addresses=127.0.0.1\" start >/dev/null") != 0)
    throw std::runtime_error("the server did not start, see " + folder_ + "/server.log");
  return true;
}

PostgresServer::~PostgresServer() {
  runAsServerUser(std::string(kPostgresBin) + "/pg_ctl -D " + folder_ +
                  "/data -m immediate -w stop >/dev/null");
  fs::remove_all(folder_);
}

std::string PostgresServer::freshDatabase() {
  const std::string server = "postgresql://vrx@127.0.0.1:" + std::to_string(port_) + "/";
  const std::string name = "store" + std::to_string(++databases_);
  vrxstore::openPostgres(server + "postgres")->execute("CREATE DATABASE " + name);
  return server + name;
}

}  // namespace storetest
