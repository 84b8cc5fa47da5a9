// How the operating system boots: a boot.ini file or the boot configuration
// store.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "frame/log_message.h"
#include "frame/types.h"

namespace installedapps_col {

class OSConfiguration {
 public:
  OSConfiguration() : logger(LogMessage::getInstance()) {}
  virtual ~OSConfiguration() {}

  // BootConfigurationFileName and BootConfigurationFileContents, each when
  // it was found; each looks for the configuration afresh.
  PropertyMap getBootProperties();
  // kBootName: the file's path or the boot manager's name; kBootContents:
  // the file's lines or the blocks of the store. Null when neither a file
  // nor the store can be read.
  NZARVEK20::TCIMValue getBootConfigurationValue(int mode);
  // Installed systems, boot manager, memory test and resume object.
  std::vector<std::string> getBcdDescriptions();
  // The "Element" value of a key of the store as text; empty when it isn't
  // there or is no text.
  std::string readBcdElement(std::string keyPath);

  static constexpr int kBootName = 0;
  static constexpr int kBootContents = 1;

 private:
  NZARVEK20::TCIMValue bootFileValue(int mode, std::istream& file, const std::string& path);
  NZARVEK20::TCIMValue bootStoreValue(int mode);
  // The description and application path block of one object of the store.
  std::string applicationBlock(const std::string& label, const std::string& object);

  LogMessage* logger;
};

}  // namespace installedapps_col
