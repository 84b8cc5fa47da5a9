// The host's core logger, as plug-ins see it.
#pragma once

#include <string>

namespace NZARVEK20 {

class ILogger {
 public:
  virtual ~ILogger() {}
  // Whether a line of `level` would reach any sink.
  virtual bool IsEnabled(int level) const = 0;
  // Levels: 0 errors, 3 ordinary trace, 4 detail. The message is written as
  // given, with nothing added.
  virtual void Log(int level, const std::string& message) = 0;
};

}  // namespace NZARVEK20
