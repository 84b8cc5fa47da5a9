#include "winapi/support/registry_store.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "winapi/support/little_endian.h"

namespace winapi {

namespace {

constexpr wchar_t kFirstSurrogate = 0xD800, kFirstLowSurrogate = 0xDC00, kLastSurrogate = 0xDFFF;
constexpr std::uint32_t kFirstSupplementary = 0x10000;

// Windows upper-cases registry names with its Unicode table; glibc's C.UTF-8 locale has the
// same simple mappings for the characters names use. Kept here, where the hashes and comparisons
// of names can have it inline; upperCase() gives it to the rest.
wchar_t upper(wchar_t c) {
  if (c < 0x80) return c >= L'a' && c <= L'z' ? c - L'a' + L'A' : c;
  static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
  return unicode ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), unicode)) : c;
}

void appendUnit(std::string& bytes, std::uint32_t unit) {
  bytes.push_back(static_cast<char>(unit & 0xFF));
  bytes.push_back(static_cast<char>(unit >> 8));
}

}  // namespace

wchar_t upperCase(wchar_t c) { return upper(c); }

int compareIgnoringCase(std::wstring_view a, std::wstring_view b) {
  std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    // Names mostly share their case: equal characters are passed over before upper-casing.
    if (a[i] == b[i]) continue;
    auto x = static_cast<std::uint32_t>(upper(a[i]));
    auto y = static_cast<std::uint32_t>(upper(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

std::string utf16Bytes(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  appendUtf16Bytes(bytes, text);
  return bytes;
}

void appendUtf16Bytes(std::string& bytes, std::wstring_view text) {
  for (wchar_t c : text) {
    auto code = static_cast<std::uint32_t>(c);
    if (code < kFirstSupplementary) {
      appendUnit(bytes, code);
    } else {
      code -= kFirstSupplementary;
      appendUnit(bytes, kFirstSurrogate + (code >> 10));
      appendUnit(bytes, kFirstLowSurrogate + (code & 0x3FF));
    }
  }
}

std::wstring fromUtf16Bytes(std::string_view bytes) {
  std::wstring text;
  auto unitAt = [&](std::size_t i) { return static_cast<wchar_t>(littleEndian(bytes, i, 2)); };
  std::size_t units = bytes.size() / 2;
  for (std::size_t i = 0; i < units; ++i) {
    wchar_t unit = unitAt(2 * i);
    bool high = unit >= kFirstSurrogate && unit < kFirstLowSurrogate;
    wchar_t next = i + 1 < units ? unitAt(2 * i + 2) : 0;
    if (high && next >= kFirstLowSurrogate && next <= kLastSurrogate) {
      text.push_back(static_cast<wchar_t>(kFirstSupplementary + ((unit - kFirstSurrogate) << 10) +
                                          (next - kFirstLowSurrogate)));
      ++i;
    } else {
      text.push_back(unit);
    }
  }
  return text;
}

const RegistryKey::SubKeys& RegistryKey::subKeys() const {
  if (!sorted_) sortSubKeys();
  return subKeys_;
}

namespace {

// Sorts `keys` by their upper-cased names. A sort compares each name many times: the names are
// upper-cased once, side by side, in characters of type Char (a byte each when all are ASCII), so
// that comparing them reads neither the keys nor their scattered names.
template <class Char>
void sortByUpperCasedName(RegistryKey::SubKeys& keys) {
  struct Entry {
    std::size_t begin, size;
    std::unique_ptr<RegistryKey>* key;
  };
  std::basic_string<Char> names;
  std::vector<Entry> entries;
  entries.reserve(keys.size());
  for (std::unique_ptr<RegistryKey>& key : keys) {
    entries.push_back({names.size(), key->name().size(), &key});
    for (wchar_t c : key->name()) names.push_back(static_cast<Char>(upper(c)));
  }
  std::basic_string_view<Char> all = names;
  std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
    return all.substr(a.begin, a.size) < all.substr(b.begin, b.size);
  });
  RegistryKey::SubKeys sorted;
  sorted.reserve(keys.size());
  for (const Entry& entry : entries) sorted.push_back(std::move(*entry.key));
  keys = std::move(sorted);
}

}  // namespace

void RegistryKey::sortSubKeys() const {
  if (longestAsciiSubKeyName())
    sortByUpperCasedName<char>(subKeys_);
  else
    sortByUpperCasedName<wchar_t>(subKeys_);
  sorted_ = true;
}

namespace {

// FNV-1a over the upper-cased characters.
std::size_t foldedHash(std::wstring_view name) {
  std::size_t hash = 14695981039346656037ull;
  for (wchar_t c : name) hash = (hash ^ static_cast<std::uint32_t>(upper(c))) * 1099511628211ull;
  // The low bits choose the slot; FNV's low bits hear only the low bits of each character.
  return hash ^ (hash >> 32);
}

auto sameName(std::wstring_view name) {
  return [name](const RegistryKey& key) { return equalsIgnoringCase(key.name(), name); };
}

}  // namespace

RegistryKey* RegistryKey::indexedSubKey(std::wstring_view name) const {
  const SubKeyIndex::Slot* slot = subKeyIndex_.find(foldedHash(name), sameName(name));
  return slot ? slot->item : nullptr;
}

const RegistryKey* RegistryKey::subKey(std::wstring_view name) const { return indexedSubKey(name); }

void RegistryKey::indexValues() const {
  valueIndex_.clear();
  for (std::size_t at = 0; at < values_.size(); ++at)
    valueIndex_.emplace(values_[at].name.foldedHash(), at);
}

const RegistryValue* RegistryKey::value(std::wstring_view name) const {
  // A few values are looked at one by one, without asking for the name made.
  if (values_.size() <= kValuesScanned) {
    auto found = std::find_if(values_.begin(), values_.end(), [&](const RegistryValue& value) {
      return equalsIgnoringCase(value.name, name);
    });
    return found == values_.end() ? nullptr : &*found;
  }
  std::optional<RegistryName> known = RegistryName::known(name);
  return known ? findValue(*known) : nullptr;
}

const RegistryValue* RegistryKey::findValue(RegistryName name) const {
  if (values_.size() <= kValuesScanned) {
    auto found = std::find_if(values_.begin(), values_.end(),
                              [&](const RegistryValue& value) { return value.name.sameAs(name); });
    return found == values_.end() ? nullptr : &*found;
  }
  if (valueIndex_.size() != values_.size()) indexValues();
  auto found = valueIndex_.find(name.foldedHash());
  return found == valueIndex_.end() ? nullptr : &values_[found->second];
}

const RegistryKey* RegistryKey::find(const RegistryPath& path) const {
  const RegistryKey* key = this;
  for (auto part = path.begin(); key && part != path.end(); ++part) key = key->subKey(*part);
  return key;
}

RegistryKey* RegistryKey::find(const RegistryPath& path) {
  return const_cast<RegistryKey*>(std::as_const(*this).find(path));
}

RegistryKey& RegistryKey::makeSubKey(std::wstring_view name) {
  if (RegistryKey* found = indexedSubKey(name)) return *found;
  return adopt(std::make_unique<RegistryKey>(std::wstring(name)));
}

std::optional<std::size_t> RegistryKey::longestAsciiSubKeyName() const {
  if (!subKeyNamesKnown_) {
    longestSubKeyName_ = 0;
    subKeyNamesAscii_ = true;
    for (const auto& key : subKeys_) {
      longestSubKeyName_ = std::max(longestSubKeyName_, key->name().size());
      subKeyNamesAscii_ = subKeyNamesAscii_ && isAscii(key->name());
    }
    subKeyNamesKnown_ = true;
  }
  if (!subKeyNamesAscii_) return std::nullopt;
  return longestSubKeyName_;
}

RegistryKey& RegistryKey::adopt(std::unique_ptr<RegistryKey> key) {
  subKeys_.push_back(std::move(key));
  RegistryKey* adopted = subKeys_.back().get();
  longestSubKeyName_ = std::max(longestSubKeyName_, adopted->name().size());
  subKeyNamesAscii_ = subKeyNamesAscii_ && isAscii(adopted->name());
  subKeyIndex_.insert(foldedHash(adopted->name()), adopted);
  if (sorted_ && subKeys_.size() > 1)
    sorted_ = compareIgnoringCase(subKeys_[subKeys_.size() - 2]->name(), adopted->name()) < 0;
  return *adopted;
}

void RegistryKey::absorb(RegistryKey&& other) {
  for (RegistryValue& value : other.values_) setValue(std::move(value));
  // A sub-key new here comes over whole, with everything below it.
  for (std::unique_ptr<RegistryKey>& subKey : other.subKeys_) {
    if (RegistryKey* found = indexedSubKey(subKey->name()))
      found->absorb(std::move(*subKey));
    else
      adopt(std::move(subKey));
  }
  other.subKeyIndex_.clear();
  other.subKeys_.clear();
  other.subKeyNamesKnown_ = false;
  other.values_.clear();
  other.valueIndex_.clear();
}

void RegistryKey::removeSubKey(std::wstring_view name) {
  SubKeyIndex::Slot* slot = subKeyIndex_.find(foldedHash(name), sameName(name));
  if (!slot) return;
  const RegistryKey* removed = slot->item;
  subKeyIndex_.erase(slot);
  subKeyNamesKnown_ = false;
  subKeys_.erase(
      std::find_if(subKeys_.begin(), subKeys_.end(),
                   [&](const std::unique_ptr<RegistryKey>& key) { return key.get() == removed; }));
}

void RegistryKey::setValue(RegistryValue value) {
  if (auto* existing = const_cast<RegistryValue*>(findValue(value.name))) {
    existing->type = value.type;
    existing->data = std::move(value.data);
    return;
  }
  // An index in use grows with the values; one not yet built is built when first needed.
  if (!valueIndex_.empty()) valueIndex_.emplace(value.name.foldedHash(), values_.size());
  values_.push_back(std::move(value));
}

void RegistryKey::removeValue(std::wstring_view name) {
  std::optional<RegistryName> known = RegistryName::known(name);
  if (!known) return;
  values_.erase(
      std::remove_if(values_.begin(), values_.end(),
                     [&](const RegistryValue& value) { return value.name.sameAs(*known); }),
      values_.end());
  valueIndex_.clear();
}

}  // namespace winapi
