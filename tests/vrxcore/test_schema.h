// A small schema that exercises what the repository must honour.
#pragma once

#include "vrxcore/mof_loader.h"

namespace NZARVEK20 {

inline const char* kTestQualifiers = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Abstract : boolean = false, Scope(class, association), Flavor(Restricted);
Qualifier Description : string = null, Scope(any), Flavor(ToSubclass, Translatable);
)";

inline const char* kTestClasses = R"(
[Abstract, Description("A setting")]
class T_Setting {
  [Key] string SettingID;
  string SettingValue = "unset";
};
class T_SystemSetting : T_Setting {
  uint16 Weight;
  datetime Changed;
  string Tags[];
};
class T_UserSetting : T_Setting { };
class T_System {
  [Key] string CreationClassName;
  [Key] string Name;
  [Key] uint32 Number;
  boolean Flag;
};
[Association]
class T_SystemSettings {
  [Key] T_System REF Element;
  [Key] T_Setting REF Setting;
};
)";

inline boost::shared_ptr<TRepositoryNamespace> makeTestNamespace() {
  auto ns = TRepositoryNamespace::Create("root/test");
  LoadMof(*ns, mof::parseMof(std::string(kTestQualifiers) + kTestClasses, "test.mof"));
  return ns;
}

}  // namespace NZARVEK20
