// Writes large described machines for measuring: a template machine directory (machine.json,
// registry/, drive_c/) copied and grown with generated applications, fixes, components,
// environment variables and users. The same seed gives the same machine, byte for byte.
#ifndef VRX_BENCH_MACHINE_GENERATOR_H
#define VRX_BENCH_MACHINE_GENERATOR_H

#include <cstdint>
#include <string>

namespace bench {

struct MachineSize {
  std::size_t applications = 1000;  // keys over the three places the collector reads
  std::size_t hotfixes = 20;        // HotFix keys; some application names are their updates
  std::size_t fixes = 20;           // fix keys in the Updates tree
  std::size_t components = 100;     // optional components over generated INF files
  std::size_t variables = 100;      // environment variables, half system, half the user's
  std::size_t users = 10;
  std::uint64_t seed = 1;
};

// The registry text (UTF-8, "Windows Registry Editor Version 5.00") of the applications: the
// Uninstall keys, the WOW64 Uninstall keys and the Installer products, in generation order (not
// sorted), with duplicates, updates of the hot fixes and parent keys without a name mixed in.
std::string applicationsRegText(const MachineSize& size);

// Copies `templateDir` to `outDir` (which must not exist) and grows it to `size`.
void writeMachine(const std::string& templateDir, const std::string& outDir,
                  const MachineSize& size);

}  // namespace bench

#endif
