#include "winapi/image/partition_table.h"

#include <algorithm>
#include <memory>

#include "winapi/support/errors.h"
#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

struct CloseVolumeSystem {
  void operator()(TSK_VS_INFO* volumes) const { tsk_vs_close(volumes); }
};

// C12A7328-F81F-11D2-BA4B-00A0C93EC93B as a GPT entry stores it (first three fields little-endian).
const std::array<unsigned char, 16> efiSystemType = {
    0x28, 0x73, 0x2A, 0xC1, 0x1F, 0xF8, 0xD2, 0x11, 0xBA, 0x4B, 0x00, 0xA0, 0xC9, 0x3E, 0xC9, 0x3B};
const unsigned char protectiveMbrType = 0xEE;

// Where a GPT keeps its entries, from its header in sector 1.
struct GptEntries {
  std::uint64_t offset = 0;  // in bytes
  std::uint32_t size = 0;    // of one entry
};

GptEntries gptEntries(const TskImage& image, unsigned sectorSize) {
  const std::string header = image.read(sectorSize, 92);
  if (header.size() < 92) return {};
  return {littleEndian64(header, 72) * sectorSize, littleEndian(header, 84, 4)};
}

// The number fdisk gives an MBR partition: its slot in sector 0, or 5, 6 … down the chain of
// extended tables, each holding one logical partition.
unsigned mbrNumber(const TSK_VS_PART_INFO& part) {
  return part.table_num == 0 ? static_cast<unsigned>(part.slot_num) + 1
                             : 4 + static_cast<unsigned>(part.table_num);
}

void readGptEntry(Partition& partition, const TskImage& image, const GptEntries& entries,
                  const TSK_VS_PART_INFO& part) {
  partition.number = static_cast<unsigned>(part.slot_num) + 1;
  partition.scheme = PartitionScheme::Gpt;
  partition.name = part.desc ? part.desc : "";
  const std::string entry =
      image.read(entries.offset + std::uint64_t{entries.size} * part.slot_num, 32);
  if (entry.size() < 32) return;
  partition.efiSystem =
      std::equal(efiSystemType.begin(), efiSystemType.end(), entry.begin(),
                 [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); });
  std::copy(entry.begin() + 16, entry.end(), partition.guid.begin());
}

void readMbrEntry(Partition& partition, const std::string& sector0, const TSK_VS_PART_INFO& part) {
  partition.number = mbrNumber(part);
  partition.scheme = PartitionScheme::Mbr;
  partition.diskSignature = littleEndian(sector0, 440, 4);
}

// A GPT disk whose GPT TSK could not read shows only its protective MBR entry.
void checkNotProtective(const std::string& sector0, const TSK_VS_PART_INFO& part,
                        const std::string& path) {
  if (part.table_num == 0 && part.slot_num < 4 &&
      static_cast<unsigned char>(sector0[446 + 16 * part.slot_num + 4]) == protectiveMbrType)
    throw MachineError(path + ": its GPT partition table is damaged (only the protective MBR " +
                       "entry in sector 0 can be read)");
}

void checkWithinImage(const Partition& partition, const TskImage& image, const std::string& path) {
  const std::uint64_t imageSize = image.bytes().size();
  if (partition.offset + partition.size > imageSize)
    throw MachineError(path + ": " + describePartition(partition) + " ends at byte " +
                       std::to_string(partition.offset + partition.size) + " but the image has " +
                       std::to_string(imageSize) + " bytes; the image is truncated");
}

}  // namespace

std::optional<std::vector<Partition>> readPartitionTable(const TskImage& image,
                                                         const std::string& path) {
  std::unique_ptr<TSK_VS_INFO, CloseVolumeSystem> volumes(
      tsk_vs_open(image.get(), 0, TSK_VS_TYPE_DETECT));
  tsk_error_reset();
  if (!volumes) return std::nullopt;
  const bool gpt = volumes->vstype == TSK_VS_TYPE_GPT;
  const std::string sector0 = image.read(0, 512);
  if (!gpt && volumes->vstype != TSK_VS_TYPE_DOS) return std::nullopt;
  if (sector0.size() < 512) return std::nullopt;
  const GptEntries entries = gpt ? gptEntries(image, volumes->block_size) : GptEntries{};
  std::vector<Partition> partitions;
  for (TSK_PNUM_T i = 0; i < volumes->part_count; ++i) {
    const TSK_VS_PART_INFO* part = tsk_vs_part_get(volumes.get(), i);
    if (!part || !(part->flags & TSK_VS_PART_FLAG_ALLOC) || part->slot_num < 0) continue;
    Partition partition;
    partition.offset = std::uint64_t{part->start} * volumes->block_size;
    partition.size = std::uint64_t{part->len} * volumes->block_size;
    if (gpt)
      readGptEntry(partition, image, entries, *part);
    else
      readMbrEntry(partition, sector0, *part);
    checkWithinImage(partition, image, path);
    if (!gpt) checkNotProtective(sector0, *part, path);
    partitions.push_back(partition);
  }
  std::sort(partitions.begin(), partitions.end(),
            [](const Partition& a, const Partition& b) { return a.number < b.number; });
  return partitions;
}

}  // namespace winapi
