// Any bytes as a hive followed by its transaction logs replay to a clean hive or to nothing, and
// nothing else: no crash, no hang. The input is cut before each "regf" that starts one of its
// 512-byte sectors: the primary file, then .LOG1, then .LOG2 (which keeps the rest). Seeds: the
// dirty hives beside the checkout, each with its logs appended (made when the build is set up).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "winapi/formats/hive_log.h"

namespace {

constexpr std::size_t kSector = 512;
constexpr std::size_t kFiles = 3;

std::vector<std::string> files(std::string_view input) {
  std::vector<std::string> files(1);
  for (std::size_t at = 0; at < input.size(); at += kSector) {
    if (at > 0 && files.size() < kFiles && input.substr(at, 4) == "regf") files.emplace_back();
    files.back().append(input.substr(at, kSector));
  }
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> logs = files({reinterpret_cast<const char*>(data), size});
  std::string primary = std::move(logs.front());
  logs.erase(logs.begin());
  const auto replayed = winapi::replayHiveLogs(std::move(primary), logs);
  // A replay leaves the base block whole and its sequence numbers equal.
  if (replayed && winapi::needsReplay(*replayed)) std::abort();
  return 0;
}
