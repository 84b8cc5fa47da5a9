// A 32-bit process on 64-bit Windows sees SysWOW64 where it names system32.
// This loads kernel32 for the length of one search and runs a read with
// that redirection switched off for the calling thread, where the system
// offers the switch.
#pragma once

#include <functional>

#include "frame/platform.h"

namespace installedapps_col {

class Wow64Redirection {
 public:
  Wow64Redirection();
  ~Wow64Redirection();
  Wow64Redirection(const Wow64Redirection&) = delete;
  Wow64Redirection& operator=(const Wow64Redirection&) = delete;

  // False when kernel32 could not be loaded.
  bool isLoaded() const { return kernel32 != nullptr; }
  // Runs `read` only when the redirection could be switched off; it is
  // back on when this returns.
  void runWithoutRedirection(const std::function<void()>& read) const;

 private:
  HMODULE kernel32;
};

}  // namespace installedapps_col
