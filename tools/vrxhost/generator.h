// What made an inventory, as every inventory and --version say it.
#pragma once

#include "vrx_build.h"

namespace vrxhost {

inline constexpr char kGenerator[] = "vrxhost " VRX_VERSION " (commit " VRX_COMMIT ")";

}  // namespace vrxhost
