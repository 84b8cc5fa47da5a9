// What Windows this is: the product facts the registry keeps, and the
// generation (OSType) and edition (OSSubType) numbers decided from the
// reported version, product type, suite and architecture.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "frame/log_message.h"
#include "frame/platform.h"
#include "frame/types.h"
#include "host/cim_interfaces.h"

namespace installedapps_col {

class OSProductInfo {
 public:
  explicit OSProductInfo(boost::shared_ptr<NZARVEK20::ICIMClass> cimClass);
  virtual ~OSProductInfo() {}

  // The facts as values of the properties the class declares.
  PropertyMap getProductProperties();

  // ProductID, Version, InstallDate, RegisteredOwner, BuildID, ProductName.
  FactMap getRegistryFacts();
  // OSType, OSSubType and FixLevel; empty when the version can't be read.
  FactMap getVersionFacts();
  unsigned short getOSType(const OSVERSIONINFOEXA& info);
  unsigned short getOSSubType(const OSVERSIONINFOEXA& info);
  std::string getEditionName(const OSVERSIONINFOEXA& info);
  bool isPreinstallationEnvironment();

 private:
  // The generation of each version whose answer depends on more than the
  // version; `type` is what the version alone gave.
  unsigned short typeOf52(const OSVERSIONINFOEXA& info, unsigned short type, bool r2);
  unsigned short typeOf60(const OSVERSIONINFOEXA& info);
  unsigned short typeOf61(const OSVERSIONINFOEXA& info);
  unsigned short typeOf62(const OSVERSIONINFOEXA& info, unsigned short type);
  // Whether the R2 setup left its build number, and whether the system
  // runs as a preinstallation environment (the MiniNT key).
  bool hasR2Marker();
  bool hasMiniNTKey();

  boost::shared_ptr<NZARVEK20::ICIMClass> cimClass;
  LogMessage* logger;
};

}  // namespace installedapps_col
