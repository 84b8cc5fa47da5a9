// Any bytes as an INF file give a parsed file or an InfError, and nothing else: no crash, no
// other exception, no hang. Every field of a parsed file also goes through the [Strings]
// substitution, as SetupGetStringFieldA does it. Seeds: tests/winapi/inf.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "winapi/formats/inf_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    winapi::InfFile file = winapi::InfFile::parse(bytes, 1252, "fuzz.inf");
    for (const winapi::InfSection& section : file.sections())
      for (const winapi::InfLine& line : section.lines) {
        if (line.key) file.substitute(*line.key);
        for (const std::string& field : line.fields) file.substitute(field);
      }
  } catch (const winapi::InfError&) {
  }
  return 0;
}
