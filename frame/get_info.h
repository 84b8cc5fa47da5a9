// The base of every collector: what the dispatcher sees of it, and the end
// of a collector's work, where a record becomes a committed instance.
#pragma once

#include <boost/shared_ptr.hpp>

#include "frame/log_message.h"
#include "frame/types.h"
#include "host/cim_interfaces.h"

namespace installedapps_col {

class GetInfo {
 public:
  explicit GetInfo(boost::shared_ptr<NZARVEK20::ICIMClass> cimClass);
  virtual ~GetInfo();

  // Instance collectors override this one; the count is informative.
  virtual int getCIMInstances();
  // Association collectors override this one.
  virtual int buildCIMAssociation(boost::shared_ptr<NZARVEK20::ICIMNamespace> ns);

  // The class this collector fills; throws TVRXException (7) without one.
  boost::shared_ptr<NZARVEK20::ICIMClass> getCIMClass();
  // Makes, fills and commits one instance of the collector's class.
  boost::shared_ptr<NZARVEK20::ICIMInstance> buildCIMInstance(PropertyMap values);
  // The facts as values of the class's properties (see CIMValueBuilder).
  PropertyMap getCIMProperties(FactMap facts);
  // One instance per record: its facts as values, then each entry of
  // `keys` the record has no value for. A record that fails is skipped with
  // `prefix`, the fixed text and its status code at level 3. Returns the
  // number committed.
  int buildInstancesFromRecords(FactList records, const PropertyMap& keys,
                                const std::string& prefix);
  // Gives every string key property without an entry in `values` the
  // empty text, so that no such key reaches Commit unset.
  void fixUpInstance(boost::shared_ptr<NZARVEK20::ICIMInstance> instance, PropertyMap values);

 protected:
  LogMessage* logger;
  boost::shared_ptr<NZARVEK20::ICIMClass> cimClass;
};

}  // namespace installedapps_col
