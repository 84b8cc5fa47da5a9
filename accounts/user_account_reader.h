// The accounts of the machine that are logged on, read through the Net API,
// and the account of the process's user, which is always among them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "frame/log_message.h"
#include "frame/types.h"

namespace installedapps_col {

// One value map per account, in the order the accounts were found.
using AccountList = std::vector<PropertyMap>;
// User name (with case) to its "Domain" and "LogonServer".
using LoggedOnUsers = std::map<std::string, std::map<std::string, std::string>>;

class UserAccountReader {
 public:
  UserAccountReader() : logger(LogMessage::getInstance()) {}

  // readAccounts() without the values that came out null.
  AccountList getAccounts();
  // The logged-on local accounts, then the process's user from the
  // environment unless an account of that name is there already.
  AccountList readAccounts();
  // Every workstation session; a user listed twice keeps the first entry.
  LoggedOnUsers getLoggedOnUsers();
  static bool isFlagSet(unsigned long mask, unsigned long flags) { return (flags & mask) != 0; }
  // The user the process runs as; empty when the system does not say.
  std::string getCurrentUserName();

 private:
  LogMessage* logger;
};

}  // namespace installedapps_col
