#include "winapi/image/partition.h"

namespace winapi {

std::string describePartition(const Partition& partition) {
  return partition.number == 0 ? "the whole image"
                               : "partition " + std::to_string(partition.number);
}

}  // namespace winapi
