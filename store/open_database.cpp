#include "store/database.h"

namespace vrxstore {
namespace {

bool startsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

std::unique_ptr<Database> openDatabase(const std::string& target, Missing missing) {
  if (startsWith(target, "postgresql://") || startsWith(target, "postgres://"))
    return openPostgres(target);
  if (startsWith(target, "sqlite:")) return openSqlite(target.substr(7), missing);
  if (target.empty()) throw std::invalid_argument("the store's target is empty");
  return openSqlite(target, missing);
}

}  // namespace vrxstore
