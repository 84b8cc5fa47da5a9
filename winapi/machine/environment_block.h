// The environment variables of the machine's process. Names are compared without regard to
// case, as on Windows, and keep the spelling of their first definition.
#ifndef VRX_WINAPI_ENVIRONMENT_BLOCK_H
#define VRX_WINAPI_ENVIRONMENT_BLOCK_H

#include <map>
#include <string>
#include <string_view>

#include "winapi/support/text.h"

namespace winapi {

class EnvironmentBlock {
 public:
  struct Variable {
    std::string name;   // UTF-8
    std::string value;  // UTF-8
    std::string
        ansiValue;  // in the machine's ANSI code page, as the A functions and getenv give it
  };
  using Variables = std::map<std::string, Variable, LessIgnoringCase>;

  explicit EnvironmentBlock(unsigned ansiCodePage = 1252) : codePage_(ansiCodePage) {}

  void set(const std::string& name, const std::string& value);
  const Variable* find(std::string_view name) const;
  const Variables& variables() const { return variables_; }

 private:
  unsigned codePage_;
  Variables variables_;
};

}  // namespace winapi

#endif
