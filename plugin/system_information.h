// Turns the host's list of classes into runs of collectors, one class at a
// time, and keeps one class's failure from reaching the next.
#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>

#include "frame/get_info.h"

namespace installedapps_col {

class SystemInformation {
 public:
  explicit SystemInformation(boost::shared_ptr<NZARVEK20::ICIMNamespace> outputNamespace);
  virtual ~SystemInformation();

  // Runs the collector of `cimClass`, if there is one; the result is its
  // count, 0 when none ran or it failed.
  int collectClass(boost::shared_ptr<NZARVEK20::ICIMClass> cimClass);

  // Whether VRX_EXCLUDEAPPS holds any text at all.
  static bool applicationsExcluded();

 protected:
  using Factory =
      boost::shared_ptr<GetInfo> (SystemInformation::*)(boost::shared_ptr<NZARVEK20::ICIMClass>);

  std::map<std::string, Factory> table;
  LogMessage* logger;
  boost::shared_ptr<NZARVEK20::ICIMNamespace> outputNamespace;

 private:
  // The factory of one collector class: it makes the collector and does
  // nothing else.
  template <class Collector>
  boost::shared_ptr<GetInfo> make(boost::shared_ptr<NZARVEK20::ICIMClass> cimClass) {
    return boost::shared_ptr<GetInfo>(new Collector(cimClass));
  }
  int runCollector(const std::string& className, boost::shared_ptr<NZARVEK20::ICIMClass> cimClass);
};

}  // namespace installedapps_col
