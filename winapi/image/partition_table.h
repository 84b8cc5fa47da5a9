// The partitions in a disk's partition table, read through TSK with the fields TSK leaves out
// (MBR disk signature, GPT type and unique GUIDs) read from the table itself.
#ifndef VRX_WINAPI_IMAGE_PARTITION_TABLE_H
#define VRX_WINAPI_IMAGE_PARTITION_TABLE_H

#include <optional>
#include <string>
#include <vector>

#include "winapi/image/partition.h"
#include "winapi/image/tsk_image.h"

namespace winapi {

// The partitions of the table, file systems not yet known; nullopt when the disk has no table TSK
// recognises. Throws MachineError naming `path` for a damaged GPT or a partition past the end of
// the image.
std::optional<std::vector<Partition>> readPartitionTable(const TskImage& image,
                                                         const std::string& path);

}  // namespace winapi

#endif
