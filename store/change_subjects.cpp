#include "store/change_subjects.h"

namespace vrxstore {

const std::vector<ChangeSubject>& changeSubjects() {
  static const std::vector<ChangeSubject> subjects = {
      {"application",
       "qelto_installedapplication",
       "productname",
       "$.productversion",
       {"productname", "productversion"}},
      {"fix",
       "qelto_installedfix",
       "productversion",
       "$.productname",
       {"productversion", "productname"}},
      {"account",
       "qelto_account",
       "name",
       "coalesce($.domain, '') || ' enabled=' || coalesce(CAST($.accountenabled AS text), '') || "
       "' expired=' || coalesce(CAST($.passwordexpired AS text), '') || ' last logon ' || "
       "coalesce($.lastlogon_cim, '')",
       {"name", "domain", "accountenabled", "passwordexpired", "lastlogon_cim"}},
      {"system variable",
       "qelto_systemenvironmentvariable",
       "settingid",
       "$.settingvalue",
       {"settingid", "settingvalue"}},
      {"user variable",
       "qelto_userenvironmentvariable",
       "settingid",
       "$.settingvalue",
       {"settingid", "settingvalue"}},
  };
  return subjects;
}

std::string valueOf(const ChangeSubject& subject, const std::string& alias) {
  const std::string prefix = alias.empty() ? "" : alias + ".";
  std::string value;
  for (std::size_t at = 0; at < subject.value.size(); ++at) {
    if (subject.value.compare(at, 2, "$.") == 0) {
      value += prefix;
      ++at;
    } else {
      value += subject.value[at];
    }
  }
  return value;
}

}  // namespace vrxstore
