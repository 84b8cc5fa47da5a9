// Feeds arbitrary bytes to the reader of inventories that vrxstore loads (JSON and CIM-XML): an
// InventoryError is the only acceptable way for it to refuse them.
#include <cstddef>
#include <cstdint>
#include <string>

#include "store/inventory_file.h"
#include "vrxcore/mof_loader.h"

namespace {

const std::vector<vrxstore::Table>& tables() {
  static const std::vector<vrxstore::Table> made = [] {
    auto schema = NZARVEK20::TRepositoryNamespace::Create("root/qelto");
    NZARVEK20::LoadMofFile(*schema, VRX_SCHEMA_FILE);
    return vrxstore::classTables(*schema);
  }();
  return made;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    vrxstore::snapshotOfFile(text, tables());
  } catch (const vrxstore::InventoryError&) {
  }
  return 0;
}
