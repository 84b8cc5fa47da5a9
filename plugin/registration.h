// The load-time step: the plug-in joins the host while its library loads.
#pragma once

namespace installedapps_col {

// Makes the callback object and registers it with the plug-in manager,
// which switches logging on. False when the object cannot be made.
bool registerWithHost();

}  // namespace installedapps_col
