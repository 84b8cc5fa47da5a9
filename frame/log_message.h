// The plug-in's front to the host's core logger: it decides whether a line
// goes out and at which level; the text is wholly the caller's.
#pragma once

#include <string>

#include "host/plugin.h"

namespace installedapps_col {

class LogMessage {
 public:
  virtual ~LogMessage() {}

  static LogMessage* getInstance();
  // Switches logging on; called once, by registration at load.
  static void setProvider(NZARVEK20::TPluginManagerProvider* provider);

  void logError(const std::string& message);  // level 0
  void logDebug(const std::string& message);  // level 3
  void logTrace(const std::string& message);  // level 4
  // The system's text for a Win32 error, its line end included; empty for
  // a number the system does not know.
  std::string getSystemErrorText(unsigned int errorCode);

 private:
  void log(int level, const std::string& message);

  static LogMessage* instance;
  static NZARVEK20::TPluginManagerProvider* provider;
};

}  // namespace installedapps_col
