// The offline-volume twin of a described machine: its drive C: as the volume's root, its
// registry as the hive files Windows keeps (SOFTWARE, SYSTEM, the user's NTUSER.DAT).
#ifndef VRX_BENCH_VOLUME_TWIN_H
#define VRX_BENCH_VOLUME_TWIN_H

#include <string>

namespace bench {

// Writes `volumeDir` (which must not exist) from the described machine at `machineDir`. The
// SYSTEM hive holds CurrentControlSet as ControlSet001, chosen by Select\Current, and the
// machine's computer name where the hive keeps it.
void writeVolumeTwin(const std::string& machineDir, const std::string& volumeDir);

}  // namespace bench

#endif
