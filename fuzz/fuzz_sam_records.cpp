// Any bytes as an account's F or V record give the record or a SamRecordError, and nothing else:
// no crash, no read beyond the bytes. Seeds: fuzz/seeds/sam_records/.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "winapi/formats/sam_records.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    winapi::userFlagsOf(winapi::readSamFixedRecord(bytes).accountControl);
  } catch (const winapi::SamRecordError&) {
  }
  try {
    winapi::readSamVariableRecord(bytes);
  } catch (const winapi::SamRecordError&) {
  }
  return 0;
}
