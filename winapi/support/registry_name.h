// A value's name, kept once for the whole process however many values bear it: value names
// repeat from key to key ("DisplayName" in every application's key), and a registry of a hundred
// thousand keys would otherwise hold a million copies. Two names that differ only in case share
// the entry of their upper-cased spelling, so comparing them without case is comparing pointers.
#ifndef VRX_WINAPI_REGISTRY_NAME_H
#define VRX_WINAPI_REGISTRY_NAME_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace winapi {

class RegistryName {
 public:
  // "", the name of a key's default value.
  RegistryName();
  RegistryName(std::wstring_view text);
  RegistryName(const std::wstring& text) : RegistryName(std::wstring_view(text)) {}
  RegistryName(const wchar_t* text) : RegistryName(std::wstring_view(text)) {}

  // For finding values: a name the same as `text` but perhaps for case that has been made;
  // nullopt when none has, so no value bears it. Asking keeps nothing.
  static std::optional<RegistryName> known(std::wstring_view text);

  const std::wstring& text() const { return entry_->text; }
  operator std::wstring_view() const { return entry_->text; }
  bool empty() const { return entry_->text.empty(); }

  // The same name but for case, as Windows compares value names.
  bool sameAs(RegistryName other) const { return entry_->folded == other.entry_->folded; }
  // Equal for names that are the same but for case; for indexes.
  std::size_t foldedHash() const { return reinterpret_cast<std::size_t>(entry_->folded); }

 private:
  struct Entry {
    std::wstring text;
    const Entry* folded;  // the entry of the upper-cased spelling; itself when that is this one
  };
  explicit RegistryName(const Entry* entry) : entry_(entry) {}
  class Pool;
  static Pool& pool();

  const Entry* entry_;
};

}  // namespace winapi

#endif
