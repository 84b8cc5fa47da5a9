// Feeds arbitrary bytes to the MOF reader: a ParseError is the only
// acceptable way for it to refuse them.
#include <cstddef>
#include <cstdint>
#include <string>

#include "vrxcore/mof_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    NZARVEK20::mof::parseMof(text, "fuzz.mof");
  } catch (const NZARVEK20::mof::ParseError&) {
  }
  return 0;
}
