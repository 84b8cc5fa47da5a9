// vrx_make_machine: writes a large described machine for measuring, and its offline-volume twin.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "bench/machine_generator.h"
#include "bench/volume_twin.h"

int main(int argc, char** argv) {
  CLI::App app("Writes a described machine of a given size from a template machine directory");
  std::string templateDir, outDir, volumeDir;
  bench::MachineSize size;
  app.add_option("--template", templateDir, "machine directory to start from")->required();
  app.add_option("--out", outDir, "directory to write (must not exist)")->required();
  app.add_option("--apps", size.applications, "applications");
  app.add_option("--hotfixes", size.hotfixes, "HotFix keys (default: applications / 50)");
  app.add_option("--fixes", size.fixes, "fix keys in the Updates tree");
  app.add_option("--components", size.components, "optional components");
  app.add_option("--variables", size.variables, "environment variables");
  app.add_option("--users", size.users, "users");
  app.add_option("--seed", size.seed, "seed");
  app.add_option("--volume", volumeDir, "also write its offline-volume twin here (must not exist)");
  CLI11_PARSE(app, argc, argv);
  if (app.count("--hotfixes") == 0) size.hotfixes = size.applications / 50;
  try {
    bench::writeMachine(templateDir, outDir, size);
    if (!volumeDir.empty()) bench::writeVolumeTwin(outDir, volumeDir);
  } catch (const std::exception& error) {
    std::cerr << "vrx_make_machine: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
