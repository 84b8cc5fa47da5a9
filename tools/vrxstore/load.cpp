#include "tools/vrxstore/load.h"

#include <fstream>
#include <iostream>
#include <sstream>

#include "store/inventory_file.h"

namespace vrxstore {
namespace {

std::string contentOf(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    text << std::cin.rdbuf();
    return text.str();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) throw InventoryError("cannot be read");
  text << in.rdbuf();
  return text.str();
}

void loadFile(Store& store, const std::string& file) {
  const std::string name = file == "-" ? "stdin" : file;
  const Snapshot snapshot = snapshotOfFile(contentOf(file), store.tables());
  const Stored stored = store.add(snapshot);
  std::cout << name << ": " << (stored.added ? "snapshot " : "already stored as snapshot ")
            << stored.snapshotId << " of " << snapshot.machineKey << '\n';
}

}  // namespace

int loadFiles(Store& store, const Options& options) {
  int status = kExitOk;
  for (const std::string& file : options.files) {
    try {
      loadFile(store, file);
    } catch (const std::exception& e) {
      std::cerr << "vrxstore: " << (file == "-" ? "stdin" : file) << ": " << e.what() << '\n';
      status = kExitFailure;
    }
  }
  return status;
}

}  // namespace vrxstore
