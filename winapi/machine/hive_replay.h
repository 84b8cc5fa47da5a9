// The bytes to read for a hive file: when the hive is dirty, its transaction logs (<file>.LOG1
// and <file>.LOG2 beside it, named in any case) replayed over them in memory. Nothing is written.
#ifndef VRX_WINAPI_HIVE_REPLAY_H
#define VRX_WINAPI_HIVE_REPLAY_H

#include <optional>
#include <string>
#include <vector>

#include "winapi/files/machine_files.h"

namespace winapi {

// A hive file among its machine's files.
struct HiveLocation {
  const MachineFiles& files;
  std::string path;  // a Windows path

  std::string describe() const { return files.describe(path); }
};

// The replayed bytes of a dirty hive, whose file is open as `primary`; nullopt when the file is
// to be read as it is: a clean hive, or a dirty one whose logs cannot be used, for which a warning
// naming the file is added. Throws MachineError when the hive's base block is damaged and no log
// holds a good copy.
std::optional<std::string> replayedHive(const HiveLocation& hive, int primary,
                                        std::vector<std::string>& warnings);

}  // namespace winapi

#endif
