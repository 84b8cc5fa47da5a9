#include <iostream>

#include "store/store.h"
#include "tools/vrxstore/command_line.h"
#include "tools/vrxstore/load.h"
#include "tools/vrxstore/report.h"
#include "vrx_build.h"
#include "vrxcore/mof_loader.h"
#include "vrxcore/shipped_files.h"

namespace {

using namespace vrxstore;

std::string schemaPath(const Options& options) {
  if (!options.schema.empty()) return options.schema;
  return NZARVEK20::ShippedFile(VRX_INSTALL_DATADIR, "qelto.mof");
}

int run(const Options& options) {
  auto schema = NZARVEK20::TRepositoryNamespace::Create("root/qelto");
  NZARVEK20::LoadMofFile(*schema, schemaPath(options));
  // Only loading makes a store; a question to a file that is not there is an error.
  Store store(
      openDatabase(options.target, options.command == "load" ? Missing::Create : Missing::Refuse),
      *schema);
  if (options.command == "load") return loadFiles(store, options);
  if (options.command == "diff")
    writeDiff(store.database(), options);
  else
    writeQuery(store.database(), options);
  return kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  const ParsedCommandLine parsed = parseCommandLine(argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;
  try {
    return run(parsed.options);
  } catch (const std::invalid_argument& e) {
    std::cerr << "vrxstore: " << e.what() << '\n';
    return kExitUsage;
  } catch (const std::exception& e) {
    std::cerr << "vrxstore: " << e.what() << '\n';
    return kExitFailure;
  }
}
