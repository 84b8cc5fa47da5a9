// A Windows machine inside a disk image: the NTFS partition holding Windows is drive C:, the
// system partition gives the boot store, and the other partitions take the letters the
// machine's registry gives them. The image is read, never written, and nothing is mounted.
#ifndef VRX_WINAPI_IMAGE_MACHINE_H
#define VRX_WINAPI_IMAGE_MACHINE_H

#include <memory>
#include <string>

#include "winapi/machine/machine_choice.h"

namespace winapi {

class Machine;

// Throws MachineError naming the image: one that cannot be read, one without Windows, one with
// several when `choice` picks no partition, a partition picked that holds no Windows.
std::shared_ptr<Machine> loadDiskImage(const std::string& path, const MachineChoice& choice);

}  // namespace winapi

#endif
