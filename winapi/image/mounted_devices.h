// How Windows records which partition has which drive letter: HKLM\SYSTEM\MountedDevices holds,
// for each "\DosDevices\X:" value, the partition's identity: 12 bytes for an MBR disk (the disk
// signature, then the partition's byte offset), "DMIO:ID:" and the unique partition GUID for GPT.
#ifndef VRX_WINAPI_IMAGE_MOUNTED_DEVICES_H
#define VRX_WINAPI_IMAGE_MOUNTED_DEVICES_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "winapi/image/partition.h"

namespace winapi {

// A value of the MountedDevices key: its name and its REG_BINARY data.
using MountedDevice = std::pair<std::string, std::string>;

// The data Windows keeps for `partition`; "" for a volume without a partition table.
std::string mountedDeviceData(const Partition& partition);

// Drive letter (lower case) → partition number, for each "\DosDevices\X:" value whose data names
// one of `partitions`; other values are left out.
std::map<char, unsigned> driveLetters(const std::vector<MountedDevice>& values,
                                      const std::vector<Partition>& partitions);

}  // namespace winapi

#endif
