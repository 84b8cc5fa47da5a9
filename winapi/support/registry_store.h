// The machine's registry in memory: two hives (HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER) of keys
// and values, kept as Windows keeps them. Key and value names are compared without regard to
// case; sub-keys are listed sorted by their upper-cased names, values in the order they were
// written. Lookups by name take constant time, so that loading and reading keys with a hundred
// thousand sub-keys or values stays linear. Value data is bytes with its type, text in it UTF-16LE.
#ifndef VRX_WINAPI_REGISTRY_STORE_H
#define VRX_WINAPI_REGISTRY_STORE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/open_addressing.h"
#include "winapi/support/registry_name.h"

namespace winapi {

enum class Hive { LocalMachine, CurrentUser };

// Key names below a hive's root, one per component.
using RegistryPath = std::vector<std::wstring>;

// A character of a registry name as Windows upper-cases it to compare names.
wchar_t upperCase(wchar_t c);
// Compares as Windows does for registry names: character by character, upper-cased.
int compareIgnoringCase(std::wstring_view a, std::wstring_view b);
// The same name but for case; names of different lengths are told apart without a look.
inline bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() && compareIgnoringCase(a, b) == 0;
}

// Every character below 0x80: one unit in UTF-16 and one byte in every ANSI code page.
inline bool isAscii(std::wstring_view name) {
  for (wchar_t c : name)
    if (c < 0 || c >= 0x80) return false;
  return true;
}

// Text as UTF-16LE bytes, without a terminator.
std::string utf16Bytes(std::wstring_view text);
void appendUtf16Bytes(std::string& bytes, std::wstring_view text);
// UTF-16LE bytes as text; an odd last byte is dropped and an unpaired surrogate kept as it is.
std::wstring fromUtf16Bytes(std::string_view bytes);

struct RegistryValue {
  RegistryName name;  // "" for the key's default value
  std::uint32_t type = 0;
  std::string data;
};

class RegistryKey {
 public:
  using SubKeys = std::vector<std::unique_ptr<RegistryKey>>;

  explicit RegistryKey(std::wstring name) : name_(std::move(name)) {}

  const std::wstring& name() const { return name_; }
  // Sorted by upper-cased name (sorted when first asked after sub-keys were made out of order).
  const SubKeys& subKeys() const;
  const std::vector<RegistryValue>& values() const { return values_; }

  // nullptr when there is none.
  const RegistryKey* subKey(std::wstring_view name) const;
  const RegistryValue* value(std::wstring_view name) const;
  // The length of the longest sub-key name when every one is ASCII; nullopt when some is not.
  // Kept as sub-keys are made, so that asking does not read a hundred thousand names.
  std::optional<std::size_t> longestAsciiSubKeyName() const;
  // The key `path` below this one, nullptr when some part of it is missing.
  const RegistryKey* find(const RegistryPath& path) const;
  RegistryKey* find(const RegistryPath& path);

  // The sub-key of that name, made when there is none (keeping the spelling of its first making).
  RegistryKey& makeSubKey(std::wstring_view name);
  // Moves the values and sub-keys of `other` here, as though they had been written after this
  // key's own: values of the same name replaced in their place, sub-keys of the same name merged.
  void absorb(RegistryKey&& other);
  // Removes the sub-key with everything below it; nothing when there is none.
  void removeSubKey(std::wstring_view name);
  // A value of the same name is replaced in its place.
  void setValue(RegistryValue value);
  void removeValue(std::wstring_view name);
  // Gives back the room kept for values to come, once a key has all it will have for a while:
  // a registry holds a hundred thousand keys of a few values each.
  void shrinkToFit() { values_.shrink_to_fit(); }

 private:
  // Keys with at most this many values find a value by looking at each.
  static constexpr std::size_t kValuesScanned = 16;

  void indexValues() const;
  const RegistryValue* findValue(RegistryName name) const;
  void sortSubKeys() const;
  RegistryKey& adopt(std::unique_ptr<RegistryKey> key);

  // Sub-keys by the hash of their upper-cased names: a lookup in a key of a hundred thousand
  // sub-keys reads one slot and the name it leads to, and copies nothing.
  using SubKeyIndex = common::OpenAddressing<RegistryKey>;
  RegistryKey* indexedSubKey(std::wstring_view name) const;

  std::wstring name_;
  mutable SubKeys subKeys_;
  mutable bool sorted_ = true;
  mutable std::size_t longestSubKeyName_ = 0;
  mutable bool subKeyNamesAscii_ = true;
  mutable bool subKeyNamesKnown_ = true;  // false once a sub-key was removed
  SubKeyIndex subKeyIndex_;
  std::vector<RegistryValue> values_;
  // Value positions by RegistryName::foldedHash; built once a key has more than kValuesScanned
  // values.
  mutable std::unordered_map<std::size_t, std::size_t> valueIndex_;
};

class Registry {
 public:
  RegistryKey& root(Hive hive) { return hive == Hive::LocalMachine ? localMachine_ : currentUser_; }
  const RegistryKey& root(Hive hive) const {
    return hive == Hive::LocalMachine ? localMachine_ : currentUser_;
  }

 private:
  RegistryKey localMachine_{L"HKEY_LOCAL_MACHINE"};
  RegistryKey currentUser_{L"HKEY_CURRENT_USER"};
};

}  // namespace winapi

#endif
