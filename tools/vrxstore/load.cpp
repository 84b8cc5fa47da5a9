#include "tools/vrxstore/load.h"

#include <fstream>
#include <iostream>
#include <sstream>

#include "store/inventory_file.h"
#include "tools/vrxstore/progress.h"

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

// Whether the file made a new snapshot.
bool loadFile(Store& store, const std::string& file, const LoadProgress& progress) {
  const std::string name = file == "-" ? "stdin" : file;
  const Snapshot snapshot = snapshotOfFile(contentOf(file), store.tables());
  const Stored stored = store.add(snapshot);
  progress.clear();
  std::cout << name << ": " << (stored.added ? "snapshot " : "already stored as snapshot ")
            << stored.snapshotId << " of " << snapshot.machineKey << std::endl;
  return stored.added;
}

}  // namespace

int loadFiles(Store& store, const Options& options) {
  int status = kExitOk;
  LoadProgress progress(options.files.size());
  for (const std::string& file : options.files) {
    bool written = false;
    try {
      written = loadFile(store, file, progress);
    } catch (const std::exception& e) {
      progress.clear();
      std::cerr << "vrxstore: " << (file == "-" ? "stdin" : file) << ": " << e.what() << '\n';
      status = kExitFailure;
    }
    progress.fileDone(written);
  }
  return status;
}

}  // namespace vrxstore
