// Collection reads the machine directory and never writes under it. Every entry's kind, size,
// modification time and bytes are taken before and after a run: a file written, added, removed
// or touched, or a folder whose entries changed, shows. As root, a read-only copy does not stop
// writes, so the comparison is the check; as any other user the read-only copy would also make
// a write fail, and its inventory must still equal the writable copy's.
#include <map>
#include <tuple>

#include "tests/vrxhost/vrxhost_fixture.h"

namespace {

struct EntryState {
  fs::file_type type;
  std::uintmax_t size;
  fs::file_time_type modified;
  std::string bytes;
  bool operator==(const EntryState& other) const {
    return std::tie(type, size, modified, bytes) ==
           std::tie(other.type, other.size, other.modified, other.bytes);
  }
};

std::map<std::string, EntryState> snapshot(const fs::path& root) {
  std::map<std::string, EntryState> entries;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const bool file = entry.is_regular_file();
    entries[fs::relative(entry.path(), root).string()] = {
        entry.symlink_status().type(), file ? entry.file_size() : 0, entry.last_write_time(),
        file ? readFile(entry.path()) : std::string()};
  }
  return entries;
}

void setWritable(const fs::path& root, bool writable) {
  const auto write = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  const auto options = writable ? fs::perm_options::add : fs::perm_options::remove;
  fs::permissions(root, write, options);
  for (const auto& entry : fs::recursive_directory_iterator(root))
    fs::permissions(entry.path(), write, options);
}

TEST_F(Vrxhost, CollectionNeverWritesUnderTheMachineDirectory) {
  const std::vector<fs::path> machines = {
      fs::path(VRX_SOURCE_DIR) / "examples/machines/sample",
      fs::path(VRX_SOURCE_DIR) / "examples/machines/registry-fixes",
      fs::path(VRX_BUILT_MACHINES) / "sample"};
  for (const fs::path& machine : machines) {
    const fs::path copy = dir / ("copy-" + std::to_string(&machine - machines.data()));
    fs::copy(machine, copy, fs::copy_options::recursive);
    const std::string arguments = " --log " + (dir / "log").string() + " --log-level 4 --output ";
    ASSERT_EQ(
        run("--machine " + copy.string() + arguments + (dir / "writable.json").string()).status, 0);

    setWritable(copy, false);
    const auto before = snapshot(copy);
    const Result result =
        run("--machine " + copy.string() + arguments + (dir / "read-only.json").string());
    const auto after = snapshot(copy);
    setWritable(copy, true);
    EXPECT_EQ(result.status, 0) << machine << ": " << result.err;
    EXPECT_EQ(before.size(), after.size()) << machine;
    for (const auto& entry : before)
      EXPECT_TRUE(after.count(entry.first) && after.at(entry.first) == entry.second)
          << machine << ": " << entry.first << " changed";
    EXPECT_EQ(readFile(dir / "read-only.json"), readFile(dir / "writable.json")) << machine;
  }
}

}  // namespace
