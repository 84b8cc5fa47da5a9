#include "host/os_specific.h"

namespace NZARVEK20 {
namespace {

const char* const kComputerSystemClass = "QELTO_ComputerSystem";

// The computer system the host committed for this machine, if any.
boost::shared_ptr<ICIMInstance> computerSystem(boost::shared_ptr<ICIMNamespace> ns) {
  std::vector<boost::shared_ptr<ICIMInstance>> found;
  try {
    ns->GetClass(kComputerSystemClass, {})
        ->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(found), true, {});
  } catch (const TVRXException&) {
    return nullptr;  // a schema without computer systems
  }
  return found.empty() ? nullptr : found.front();
}

std::string valueOf(boost::shared_ptr<ICIMNamespace> ns, const char* property,
                    const std::string& fallback) {
  auto system = ns ? computerSystem(ns) : nullptr;
  if (!system) return fallback;
  return static_cast<std::string>(system->GetProperty(property, {})->GetValue({}));
}

}  // namespace

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  return valueOf(ns, "Name", TOSSpecific::GetMachineName());
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns) {
  return valueOf(ns, "CreationClassName", kComputerSystemClass);
}

}  // namespace NZARVEK20
