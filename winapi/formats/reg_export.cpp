#include "winapi/formats/reg_export.h"

#include <ostream>

#include "winapi/formats/reg_value_text.h"
#include "winapi/support/errors.h"

namespace winapi {

namespace {

constexpr std::string_view kByteOrderMark = "\xFF\xFE";
constexpr std::wstring_view kHeader = L"Windows Registry Editor Version 5.00\r\n\r\n";
// The text goes out in pieces of about this many bytes.
constexpr std::size_t kPieceBytes = 1 << 20;

// What a kept root shows when the machine lacks its key (HKEY_CLASSES_ROOT without Classes).
const RegistryKey kEmptyKey{L""};

// The key `name` names, with its name as the registry spells it in `spelled`; nullptr when there
// is none.
const RegistryKey* findKey(const Registry& registry, const RegistryKeyName& name,
                           std::wstring& spelled) {
  const RootKey& root = *name.root;
  if (!root.kept) return nullptr;
  const RegistryKey* key = registry.root(root.hive).find(root.below);
  if (!key) key = &kEmptyKey;
  spelled = root.name;
  for (const std::wstring& part : name.path) {
    key = key->subKey(part);
    if (!key) return nullptr;
    spelled += L'\\' + key->name();
  }
  return key;
}

class Writer {
 public:
  explicit Writer(std::ostream& out) : out_(out) {
    bytes_ = kByteOrderMark;
    appendUtf16Bytes(bytes_, kHeader);
  }

  // The key named `path` and the keys below it; `path` is as it was again on return.
  void write(const RegistryKey& key, std::wstring& path) {
    text_ = L'[';
    text_ += path;
    text_ += L"]\r\n";
    for (const RegistryValue& value : key.values()) appendRegValue(text_, value);
    text_ += L"\r\n";
    appendUtf16Bytes(bytes_, text_);
    if (bytes_.size() >= kPieceBytes) flush();
    for (const auto& subKey : key.subKeys()) {
      std::size_t length = path.size();
      path += L'\\';
      path += subKey->name();
      write(*subKey, path);
      path.resize(length);
    }
  }

  void flush() {
    out_.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    bytes_.clear();
  }

 private:
  std::ostream& out_;
  std::wstring text_;  // the key being written
  std::string bytes_;  // UTF-16LE not yet written
};

}  // namespace

void exportRegistry(const Registry& registry, const RegistryKeyName& key, std::ostream& out) {
  std::wstring path;
  const RegistryKey* found = findKey(registry, key, path);
  if (!found)
    throw MachineError(
        key.text() + ": no such key in the machine's registry" +
        (key.root->kept ? "" : " (it keeps HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER)"));
  Writer writer(out);
  writer.write(*found, path);
  writer.flush();
}

}  // namespace winapi
