// Replays fuzz inputs through a target's LLVMFuzzerTestOneInput in any build,
// without libFuzzer: each argument is a file or a folder of files.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::set<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path argument(argv[i]);
    // Seeds made by the build may be absent (no mingw tools), as may a target's regressions.
    if (!std::filesystem::exists(argument)) continue;
    if (!std::filesystem::is_directory(argument)) {
      files.insert(argument);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argument))
      if (entry.is_regular_file()) files.insert(entry.path());
  }
  for (const auto& file : files) {
    std::cout << "replay " << file.string() << std::endl;
    replay(file);
  }
  std::cout << files.size() << " inputs replayed\n";
  return 0;
}
