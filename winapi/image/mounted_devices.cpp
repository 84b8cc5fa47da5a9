#include "winapi/image/mounted_devices.h"

#include <cctype>

#include "winapi/support/little_endian.h"
#include "winapi/support/text.h"

namespace winapi {

namespace {

const std::string dosDevicesPrefix = "\\DosDevices\\";
const std::string gptPrefix = "DMIO:ID:";

// 'c' for "\DosDevices\C:"; 0 for any other name.
char letterOf(const std::string& name) {
  const std::size_t length = dosDevicesPrefix.size() + 2;
  if (name.size() != length ||
      !equalsIgnoringCase(name.substr(0, dosDevicesPrefix.size()), dosDevicesPrefix) ||
      name.back() != ':' || !std::isalpha(static_cast<unsigned char>(name[length - 2])))
    return 0;
  return static_cast<char>(std::tolower(static_cast<unsigned char>(name[length - 2])));
}

}  // namespace

std::string mountedDeviceData(const Partition& partition) {
  switch (partition.scheme) {
    case PartitionScheme::Mbr: {
      std::string data(12, '\0');
      putLittleEndian(data, 0, partition.diskSignature, 4);
      putLittleEndian(data, 4, partition.offset, 8);
      return data;
    }
    case PartitionScheme::Gpt:
      return gptPrefix + std::string(partition.guid.begin(), partition.guid.end());
    case PartitionScheme::WholeImage:
      break;
  }
  return "";
}

std::map<char, unsigned> driveLetters(const std::vector<MountedDevice>& values,
                                      const std::vector<Partition>& partitions) {
  std::map<char, unsigned> letters;
  for (const auto& [name, data] : values) {
    const char letter = letterOf(name);
    if (!letter || data.empty()) continue;
    for (const Partition& partition : partitions)
      if (mountedDeviceData(partition) == data) letters[letter] = partition.number;
  }
  return letters;
}

}  // namespace winapi
