#include "winapi/machine/environment_block.h"

#include "winapi/support/code_pages.h"

namespace winapi {

void EnvironmentBlock::set(const std::string& name, const std::string& value) {
  Variable& variable = variables_.try_emplace(name, Variable{name, {}, {}}).first->second;
  variable.value = value;
  variable.ansiValue = utf8ToCodePage(codePage_, value);
}

const EnvironmentBlock::Variable* EnvironmentBlock::find(std::string_view name) const {
  auto found = variables_.find(name);
  return found == variables_.end() ? nullptr : &found->second;
}

}  // namespace winapi
