#include "components/wow64_redirection.h"

#include "frame/procedure.h"

namespace installedapps_col {

namespace {

typedef BOOL(WINAPI* DisableRedirectionFunction)(void**);
typedef BOOL(WINAPI* RevertRedirectionFunction)(void*);

}  // namespace

Wow64Redirection::Wow64Redirection()
    : kernel32(LoadLibraryExA("kernel32.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {}

Wow64Redirection::~Wow64Redirection() {
  if (kernel32) FreeLibrary(kernel32);
}

void Wow64Redirection::runWithoutRedirection(const std::function<void()>& read) const {
  if (!kernel32) return;
  auto disable = procedure<DisableRedirectionFunction>(kernel32, "Wow64DisableWow64FsRedirection");
  void* oldValue = nullptr;
  // Only an answer of exactly 1 means that the switch is off.
  if (!disable || disable(&oldValue) != 1) return;
  const auto revert = [&] {
    auto function = procedure<RevertRedirectionFunction>(kernel32, "Wow64RevertWow64FsRedirection");
    if (function) function(oldValue);
  };
  try {
    read();
  } catch (...) {
    revert();
    throw;
  }
  revert();
}

}  // namespace installedapps_col
