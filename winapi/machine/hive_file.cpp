// Reading hive files through libhivex. libhivex checks the hive's structure as it goes; a node or
// value it cannot read is reported as corrupt, naming the key that was being read. It reads only
// files: a replayed hive reaches it as an anonymous file in memory.
#include "winapi/machine/hive_file.h"

#include <hivex.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "winapi/files/folder_files.h"
#include "winapi/machine/hive_replay.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/file_descriptor.h"
#include "winapi/support/little_endian.h"
#include "winapi/support/text.h"

namespace fs = std::filesystem;

namespace winapi {

namespace {

// Windows nests keys at most 512 deep; the counts are far above a real hive's (a large SOFTWARE
// holds a few hundred thousand keys) and below what would exhaust memory.
constexpr int kMaxDepth = 512;
constexpr std::size_t kMaxKeys = 4u << 20;
constexpr std::size_t kMaxValues = 16u << 20;
// Data longer than one cell holds lies in segments of this size, listed by a "db" record; cell
// offsets in records count from the first hive bin.
constexpr std::size_t kMaxCellData = 16344;
constexpr std::size_t kFirstBin = 0x1000;

struct Closer {
  void operator()(hive_h* hive) const { hivex_close(hive); }
};
struct Freer {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Freer>;

// The bytes as a hive, through a file that lives in memory only; libhivex maps it and keeps it
// open, so that it goes when the hive is closed.
hive_h* openInMemory(const std::string& bytes) {
  const int fd = memfd_create("hive", MFD_CLOEXEC);
  if (fd < 0) return nullptr;
  hive_h* hive = nullptr;
  if (writeFileBytes(fd, bytes))
    hive = hivex_open(("/proc/self/fd/" + std::to_string(fd)).c_str(), 0);
  const int error = errno;
  close(fd);
  errno = error;
  return hive;
}

class HiveCopier {
 public:
  explicit HiveCopier(const HiveLocation& hive)
      : file_(hive.describe()), descriptor_(hive.files.open(hive.path)) {
    if (!descriptor_.valid()) fail("", std::string("not a readable hive: ") + std::strerror(errno));
    bytes_ = replayedHive(hive, descriptor_.get(), reading_.warnings);
    errno = 0;
    hive_.reset(bytes_ ? openInMemory(*bytes_) : hivex_open(descriptorPath().c_str(), 0));
    if (!hive_) fail("", std::string("not a readable hive: ") + std::strerror(errno));
  }

  // Once the keys are copied: the later of the base block's time stamp and the newest key's.
  HiveReading reading() {
    reading_.lastWritten =
        static_cast<std::uint64_t>(std::max(newestKey_, hivex_last_modified(hive_.get())));
    return std::move(reading_);
  }

  hive_node_h root() {
    hive_node_h node = hivex_root(hive_.get());
    if (node == 0) fail("", "no root key");
    return node;
  }

  // The sub-key of that name (any case), 0 when there is none.
  hive_node_h child(hive_node_h node, const char* name) {
    errno = 0;
    hive_node_h found = hivex_node_get_child(hive_.get(), node, name);
    if (found == 0 && errno != 0) fail(name, "corrupt key");
    return found;
  }

  // The REG_DWORD value of that name, nullopt when there is none or it is not 4 bytes.
  std::optional<std::uint32_t> dword(hive_node_h node, const char* name) {
    hive_value_h value = hivex_node_get_value(hive_.get(), node, name);
    if (value == 0) return std::nullopt;
    hive_type type;
    std::size_t size = 0;
    Owned<char> data(hivex_value_value(hive_.get(), value, &type, &size));
    if (!data || size != 4) return std::nullopt;
    return littleEndian({data.get(), 4}, 0, 4);
  }

  void copy(hive_node_h node, RegistryKey& target, const std::string& path, int depth) {
    if (depth > kMaxDepth) fail(path, "keys nested deeper than 512");
    newestKey_ = std::max(newestKey_, hivex_node_timestamp(hive_.get(), node));
    copyValues(node, target, path);
    errno = 0;
    Owned<hive_node_h> children(hivex_node_children(hive_.get(), node));
    if (!children) fail(path, std::string("corrupt key: ") + std::strerror(errno));
    for (hive_node_h* child = children.get(); *child; ++child) {
      if (++keys_ > kMaxKeys) fail(path, "more than 4194304 keys");
      Owned<char> name(hivex_node_name(hive_.get(), *child));
      if (!name) fail(path, "a sub-key without a readable name");
      std::string childPath = path.empty() ? name.get() : path + "\\" + name.get();
      copy(*child, target.makeSubKey(utf8ToWide(name.get())), childPath, depth + 1);
    }
  }

  [[noreturn]] void fail(const std::string& key, const std::string& what) const {
    throw MachineError(file_ + (key.empty() ? "" : ": key " + key) + ": " + what);
  }

 private:
  void copyValues(hive_node_h node, RegistryKey& target, const std::string& path) {
    errno = 0;
    Owned<hive_value_h> values(hivex_node_values(hive_.get(), node));
    if (!values) fail(path, std::string("corrupt value list: ") + std::strerror(errno));
    for (hive_value_h* value = values.get(); *value; ++value) {
      if (++values_ > kMaxValues) fail(path, "more than 16777216 values");
      target.setValue(readValue(*value, path));
    }
  }

  // A value's type is any 32-bit number (SAM keeps account ids there), most of them outside
  // libhivex's enumeration: its bytes are read as the number, never loaded as the enumeration.
  static std::uint32_t typeNumber(const hive_type& type) {
    static_assert(sizeof(hive_type) == sizeof(std::uint32_t), "libhivex keeps types in 32 bits");
    std::uint32_t number;
    std::memcpy(&number, &type, sizeof number);
    return number;
  }

  RegistryValue readValue(hive_value_h value, const std::string& path) {
    Owned<char> name(hivex_value_key(hive_.get(), value));
    hive_type type;
    std::size_t size = 0, declared = 0;
    Owned<char> data(hivex_value_value(hive_.get(), value, &type, &size));
    if (!name || (!data && size != 0)) fail(path, "a value that cannot be read");
    std::string bytes(data.get() ? data.get() : "", size);
    // Only data read from segments can have come back short, and by at most 4 bytes.
    if (size + 4 > kMaxCellData) {
      if (hivex_value_type(hive_.get(), value, &type, &declared))
        fail(path, "a value that cannot be read");
      if (declared > size) bytes = segmentedData(value, declared, path);
    }
    return RegistryValue{utf8ToWide(name.get()), typeNumber(type), std::move(bytes)};
  }

  // libhivex 1.3 takes each segment of long data to hold its cell's size less 8 bytes, not 4, and
  // so reads data whose last segment Windows sized exactly up to 4 bytes short. Such data is read
  // here from its "db" record.
  std::string segmentedData(hive_value_h value, std::size_t length, const std::string& path) {
    std::size_t cellLength = 0;
    const std::size_t cell = hivex_value_data_cell_offset(hive_.get(), value, &cellLength);
    const std::string& hive = fileBytes(path);
    auto number = [&](std::size_t at, std::size_t width) {
      std::optional<std::uint32_t> found = littleEndianWithin(hive, at, width);
      if (!found) fail(path, "a value whose data lies outside the hive");
      return *found;
    };
    if (hive.compare(std::min(cell + 4, hive.size()), 2, "db") != 0)
      fail(path, "a long value without its segment list");
    const std::size_t segments = number(cell + 6, 2), list = kFirstBin + number(cell + 8, 4);
    std::string data;
    for (std::size_t i = 0; i < segments && data.size() < length; ++i) {
      const std::size_t segment = kFirstBin + number(list + 4 + 4 * i, 4);
      const std::size_t take = std::min(length - data.size(), kMaxCellData);
      const auto cellSize = static_cast<std::int32_t>(number(segment, 4));
      if (cellSize > -static_cast<std::int64_t>(take + 4) || segment + 4 + take > hive.size())
        fail(path, "a long value with a segment shorter than its data");
      data.append(hive, segment + 4, take);
    }
    if (data.size() != length) fail(path, "a long value with segments missing");
    return data;
  }

  // The hive's bytes: those replayed, or the file's, read once when first needed.
  const std::string& fileBytes(const std::string& path) {
    if (!bytes_) bytes_ = readFileBytes(descriptor_.get());
    if (!bytes_) fail(path, "cannot read the hive again");
    return *bytes_;
  }

  // libhivex opens files by name: the descriptor's, whatever holds the file.
  std::string descriptorPath() const {
    return "/proc/self/fd/" + std::to_string(descriptor_.get());
  }

  std::string file_;
  FileDescriptor descriptor_;
  std::unique_ptr<hive_h, Closer> hive_;
  std::size_t keys_ = 0;
  std::size_t values_ = 0;
  std::optional<std::string> bytes_;
  HiveReading reading_;
  std::int64_t newestKey_ = 0;
};

RegistryKey& mountPoint(Registry& registry, Hive hive, const wchar_t* name) {
  RegistryKey& root = registry.root(hive);
  return name ? root.makeSubKey(name) : root;
}

}  // namespace

void HiveReading::add(const HiveReading& other) {
  lastWritten = std::max(lastWritten, other.lastWritten);
  warnings.insert(warnings.end(), other.warnings.begin(), other.warnings.end());
}

HiveReading mountOptionalHive(RegistryKey& parent, const std::wstring& name,
                              const HiveLocation& file) {
  RegistryKey hive(name);
  try {
    HiveReading reading = mountHiveFile(hive, file);
    parent.makeSubKey(name).absorb(std::move(hive));
    return reading;
  } catch (const MachineError& error) {
    HiveReading reading;
    reading.warnings.push_back(std::string(error.what()) + "; left out");
    return reading;
  }
}

HiveReading mountHiveFile(RegistryKey& mountPoint, const HiveLocation& file) {
  HiveCopier copier(file);
  copier.copy(copier.root(), mountPoint, "", 0);
  return copier.reading();
}

HiveReading mountSystemHive(Registry& registry, const HiveLocation& file) {
  HiveCopier copier(file);
  hive_node_h root = copier.root();
  RegistryKey& system = mountPoint(registry, Hive::LocalMachine, L"SYSTEM");
  copier.copy(root, system, "", 0);
  hive_node_h select = copier.child(root, "Select");
  std::optional<std::uint32_t> current = select ? copier.dword(select, "Current") : std::nullopt;
  if (!current || *current > 999) return copier.reading();
  char name[16];
  std::snprintf(name, sizeof name, "ControlSet%03u", static_cast<unsigned>(*current));
  hive_node_h controlSet = copier.child(root, name);
  if (controlSet) copier.copy(controlSet, system.makeSubKey(L"CurrentControlSet"), name, 1);
  return copier.reading();
}

std::optional<HiveReading> mountNamedHive(Registry& registry, const HiveLocation& file) {
  std::string name = asciiUpper(file.path.substr(file.path.find_last_of("\\/") + 1));
  if (name == "SYSTEM") return mountSystemHive(registry, file);
  struct Place {
    const char* file;
    Hive hive;
    const wchar_t* key;
  };
  static const Place places[] = {{"SOFTWARE", Hive::LocalMachine, L"SOFTWARE"},
                                 {"NTUSER.DAT", Hive::CurrentUser, nullptr},
                                 {"BCD", Hive::LocalMachine, L"BCD00000000"}};
  for (const Place& place : places)
    if (name == place.file) return mountHiveFile(mountPoint(registry, place.hive, place.key), file);
  return std::nullopt;
}

HiveReading mountHiveFile(RegistryKey& mountPoint, const fs::path& file) {
  const FolderFiles folder = FolderFiles::volume(file.parent_path());
  return mountHiveFile(mountPoint, {folder, "C:\\" + file.filename().string()});
}

std::optional<HiveReading> mountNamedHive(Registry& registry, const fs::path& file) {
  const FolderFiles folder = FolderFiles::volume(file.parent_path());
  return mountNamedHive(registry, {folder, "C:\\" + file.filename().string()});
}

HiveReading mountHiveDirectory(Registry& registry, const fs::path& dir) {
  HiveReading reading;
  std::error_code error;
  for (fs::directory_iterator it(dir, error), end; !error && it != end; it.increment(error))
    if (it->is_regular_file(error))
      if (auto hive = mountNamedHive(registry, it->path())) reading.add(*hive);
  if (error) throw MachineError(dir.string() + ": cannot read: " + error.message());
  return reading;
}

}  // namespace winapi
