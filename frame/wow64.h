// Whether the plug-in runs as a 32-bit process on 64-bit Windows.
#pragma once

namespace installedapps_col {

// True only when IsWow64Process exists, succeeds and answers exactly 1.
bool runsUnderWow64();

}  // namespace installedapps_col
