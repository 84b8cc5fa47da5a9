// Registration when the dynamic loader brings the library into the process,
// the counterpart of the process-attach notification on Windows.
#include "plugin/registration.h"

namespace {

__attribute__((constructor)) void onLibraryLoad() {
  // An exception cannot leave a library constructor; a plug-in that failed
  // to register is reported by the host, which finds no registration.
  try {
    installedapps_col::registerWithHost();
  } catch (...) {
  }
}

}  // namespace
