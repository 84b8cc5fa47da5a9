// The registry functions of advapi32 over the machine's registry (registry_store.h), read-only.
// Names and data go out in the machine's ANSI code page, with the sizes and error codes of the
// A functions. A 32-bit process on 64-bit Windows (system.wow64) sees HKLM\SOFTWARE\WOW6432Node
// as HKLM\SOFTWARE unless it asks for the 64-bit view; a 64-bit process sees it there when it
// asks for the 32-bit view.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>

#include "winapi/include/windows.h"
#include "winapi/machine/faults.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/handles.h"
#include "winapi/support/registry_store.h"

namespace {

using winapi::Hive;
using winapi::Registry;
using winapi::RegistryKey;
using winapi::RegistryPath;
using winapi::RegistryValue;

constexpr REGSAM kViews = KEY_WOW64_64KEY | KEY_WOW64_32KEY;
constexpr REGSAM kAllAccess = ~REGSAM{0};
constexpr const wchar_t* kWow64Node = L"WOW6432Node";

// Where a handle leads: a key, by its path below a hive's root, and what the handle may do.
struct KeyPlace {
  std::shared_ptr<const Registry> registry;  // keeps `key` alive
  Hive hive = Hive::LocalMachine;
  RegistryPath path;
  const RegistryKey* key = nullptr;
  REGSAM access = kAllAccess;
};

struct OpenKey : winapi::HandleObject {
  static constexpr winapi::HandleKind kKind = winapi::HandleKind::RegistryKey;
  explicit OpenKey(KeyPlace where) : HandleObject(kKind), place(std::move(where)) {}
  KeyPlace place;
};

struct PredefinedKey {
  HKEY handle;
  Hive hive;
  RegistryPath path;
};

// HKEY_CLASSES_ROOT shows the machine's classes (a machine has no per-user ones).
const PredefinedKey kPredefinedKeys[] = {
    {HKEY_CLASSES_ROOT, Hive::LocalMachine, {L"SOFTWARE", L"Classes"}},
    {HKEY_CURRENT_USER, Hive::CurrentUser, {}},
    {HKEY_LOCAL_MACHINE, Hive::LocalMachine, {}},
};

// What a predefined key shows when the machine lacks its key (HKEY_CLASSES_ROOT without Classes).
const RegistryKey kEmptyKey{L""};

const PredefinedKey* predefined(HKEY handle) {
  for (const PredefinedKey& key : kPredefinedKeys)
    if (key.handle == handle) return &key;
  return nullptr;
}

std::optional<KeyPlace> placeOf(HKEY handle) {
  if (const PredefinedKey* key = predefined(handle)) {
    KeyPlace place{winapi::currentMachine().registry(), key->hive, key->path};
    place.key = place.registry->root(key->hive).find(key->path);
    if (!place.key) place.key = &kEmptyKey;
    return place;
  }
  if (const OpenKey* open = winapi::checkHandle<OpenKey>(handle)) return open->place;
  return std::nullopt;
}

// The key of `handle` when the handle may do `right`; else the error. Read without copying the
// handle's place: the machine, or the handle, keeps the key alive for the call.
LSTATUS keyFor(HKEY handle, REGSAM right, const RegistryKey*& key) {
  if (predefined(handle)) {
    key = placeOf(handle)->key;
    return ERROR_SUCCESS;
  }
  const OpenKey* open = winapi::checkHandle<OpenKey>(handle);
  if (!open) return ERROR_INVALID_HANDLE;
  if ((open->place.access & right) != right) return ERROR_ACCESS_DENIED;
  key = open->place.key;
  return ERROR_SUCCESS;
}

unsigned codePage() { return winapi::currentMachine().ansiCodePage(); }

// Names and paths are mostly ASCII, which the ANSI code pages keep as it is: such text is widened
// and narrowed without a conversion.
void widen(const char* ansi, std::wstring& wide) {
  std::size_t size = std::strlen(ansi);
  // Copied in place, into the room `wide` already has.
  wide.resize(size);
  bool ascii = true;
  for (std::size_t i = 0; i < size; ++i) {
    ascii = ascii && static_cast<unsigned char>(ansi[i]) < 0x80;
    wide[i] = static_cast<unsigned char>(ansi[i]);
  }
  if (ascii && winapi::keepsAscii(codePage())) return;
  auto decoded = winapi::decode(codePage(), ansi, size);
  wide = decoded ? std::move(decoded->text) : std::wstring();
}

std::wstring wide(const char* ansi) {
  std::wstring text;
  widen(ansi, text);
  return text;
}

// A value's name as wide text, valid until the thread asks again: values are asked for by the
// million, and the name's room is kept from one to the next.
std::wstring_view valueName(const char* ansi) {
  thread_local std::wstring name;
  widen(ansi ? ansi : "", name);
  return name;
}

std::string ansi(std::wstring_view text) {
  if (std::all_of(text.begin(), text.end(), [](wchar_t c) { return c > 0 && c < 0x80; }) &&
      winapi::keepsAscii(codePage()))
    return std::string(text.begin(), text.end());
  auto encoded = winapi::encode(codePage(), text.data(), text.size(), "?");
  return encoded ? encoded->bytes : std::string();
}

bool isText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

// UTF-16LE text of ASCII characters only: no ANSI code page makes it longer than it is stored.
bool isAsciiUtf16(const std::string& bytes) {
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    if (bytes[i + 1] != 0 || static_cast<unsigned char>(bytes[i]) >= 0x80) return false;
  return true;
}

// Text as the A functions give it: converted from UTF-16LE, every character of the stored bytes
// (terminators too).
std::string ansiText(const RegistryValue& value) {
  return ansi(winapi::fromUtf16Bytes(value.data));
}

// "A\B\C" below the handle's key; nullopt for an empty component other than a trailing one.
std::optional<RegistryPath> subKeyPath(const char* subKey) {
  RegistryPath path;
  std::wstring text = subKey ? wide(subKey) : std::wstring();
  for (std::size_t start = 0; start < text.size();) {
    std::size_t slash = std::min(text.find(L'\\', start), text.size());
    if (slash == start) return std::nullopt;
    path.push_back(text.substr(start, slash - start));
    start = slash + 1;
  }
  return path;
}

bool in32BitView(REGSAM access) {
  return winapi::currentMachine().wow64() ? (access & KEY_WOW64_64KEY) == 0
                                          : (access & KEY_WOW64_32KEY) != 0;
}

void redirect(KeyPlace& place, REGSAM access) {
  RegistryPath& path = place.path;
  if (place.hive != Hive::LocalMachine || path.empty() || !in32BitView(access) ||
      !winapi::equalsIgnoringCase(path[0], L"SOFTWARE"))
    return;
  if (path.size() == 1 || !winapi::equalsIgnoringCase(path[1], kWow64Node))
    path.insert(path.begin() + 1, kWow64Node);
}

void put(LPDWORD out, std::size_t value) {
  if (out) *out = static_cast<DWORD>(value);
}

// Windows counts the longest name in UTF-16 units and the longest data in stored bytes; text in
// a multi-byte ANSI code page may be longer, and the A functions' buffers must hold it.
std::size_t nameLength(std::wstring_view name) {
  if (winapi::isAscii(name)) return name.size();
  return std::max(winapi::utf16Bytes(name).size() / 2, ansi(name).size());
}

std::size_t dataLength(const RegistryValue& value) {
  if (!isText(value.type) || isAsciiUtf16(value.data)) return value.data.size();
  return std::max(value.data.size(), ansiText(value).size());
}

// The data rule of RegQueryValueExA and RegEnumValueA: the size goes to *count; the data, when
// a buffer is given and large enough. Text stored without its terminator gets one, uncounted,
// when there is room, as Windows does.
class DataOutput {
 public:
  DataOutput(const RegistryValue& value, LPBYTE data, LPDWORD count)
      : text_(isText(value.type)), data_(data), count_(count) {
    // Other data, and text of ASCII only (the same in every ANSI code page: one byte per unit, an
    // odd last byte dropped), go out from where they are stored.
    if (!text_) {
      stored_ = value.data;
    } else if (isAsciiUtf16(value.data)) {
      stored_ = value.data;
      narrowed_ = true;
    } else {
      converted_ = ansiText(value);
      stored_ = converted_;
    }
  }

  bool fits() const { return !data_ || size() <= *count_; }
  void reportSize() { put(count_, size()); }
  void write() {
    if (data_) {
      std::size_t size = this->size();
      if (narrowed_)
        for (std::size_t i = 0; i < size; ++i) data_[i] = static_cast<BYTE>(stored_[2 * i]);
      else
        std::memcpy(data_, stored_.data(), size);
      bool terminated = size != 0 && data_[size - 1] == '\0';
      if (text_ && !terminated && size < *count_) data_[size] = 0;
    }
    reportSize();
  }

 private:
  std::size_t size() const { return narrowed_ ? stored_.size() / 2 : stored_.size(); }

  bool text_;
  bool narrowed_ = false;  // `stored_` is UTF-16LE of ASCII, given out a byte per unit
  std::string converted_;
  std::string_view stored_;
  LPBYTE data_;
  LPDWORD count_;
};

// Sub-keys are enumerated by rising index, and each one's name lies apart from the others: the
// names a few places on are asked for now, so that they are at hand when their turn comes.
void readAhead(const RegistryKey::SubKeys& subKeys, DWORD index) {
  constexpr DWORD kKeysAhead = 16, kNamesAhead = 8;
  if (index + kKeysAhead < subKeys.size()) __builtin_prefetch(subKeys[index + kKeysAhead].get());
  if (index + kNamesAhead < subKeys.size())
    __builtin_prefetch(subKeys[index + kNamesAhead]->name().data());
}

void noWriteTime(PFILETIME time) {
  // A .reg file carries no write times.
  if (time) *time = FILETIME{0, 0};
}

}  // namespace

extern "C" LSTATUS WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*ulOptions*/,
                                        REGSAM samDesired, PHKEY phkResult) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegOpenKeyExA", Reports::ByReturnValue)) return *failed;
  if (!phkResult) return ERROR_INVALID_PARAMETER;
  *phkResult = nullptr;
  if ((samDesired & kViews) == kViews) return ERROR_INVALID_PARAMETER;
  std::optional<KeyPlace> place = placeOf(hKey);
  if (!place) return ERROR_INVALID_HANDLE;
  std::optional<RegistryPath> subKey = subKeyPath(lpSubKey);
  if (!subKey) return ERROR_BAD_PATHNAME;
  // An empty sub-key opens the same key again, without redirection.
  if (!subKey->empty()) {
    place->path.insert(place->path.end(), std::make_move_iterator(subKey->begin()),
                       std::make_move_iterator(subKey->end()));
    redirect(*place, samDesired);
    place->key = place->registry->root(place->hive).find(place->path);
    if (!place->key) return ERROR_FILE_NOT_FOUND;
  }
  place->access = samDesired;
  auto* key = new OpenKey(std::move(*place));
  registerHandle(key, key);
  *phkResult = reinterpret_cast<HKEY>(key);
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegCloseKey(HKEY hKey) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegCloseKey", Reports::ByReturnValue)) return *failed;
  if (predefined(hKey)) return ERROR_SUCCESS;
  OpenKey* key = takeHandle<OpenKey>(hKey);
  if (!key) return ERROR_INVALID_HANDLE;
  delete key;
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass,
                                           LPDWORD lpReserved, LPDWORD lpcSubKeys,
                                           LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                           LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                           LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                           PFILETIME lpftLastWriteTime) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegQueryInfoKeyA", Reports::ByReturnValue)) return *failed;
  if (lpReserved || (lpClass && !lpcchClass)) return ERROR_INVALID_PARAMETER;
  const RegistryKey* key = nullptr;
  if (LSTATUS error = keyFor(hKey, KEY_QUERY_VALUE, key)) return error;
  // Keys have no class here: an empty one.
  if (lpClass && *lpcchClass == 0) return ERROR_MORE_DATA;
  if (lpClass) *lpClass = '\0';
  put(lpcchClass, 0);
  std::size_t longestSubKey = 0, longestName = 0, longestData = 0;
  if (std::optional<std::size_t> ascii = key->longestAsciiSubKeyName())
    longestSubKey = *ascii;
  else
    for (const auto& subKey : key->subKeys())
      longestSubKey = std::max(longestSubKey, nameLength(subKey->name()));
  // Each value's data is a block of its own: asked for all at once, they arrive together rather
  // than one after another.
  for (const RegistryValue& value : key->values()) __builtin_prefetch(value.data.data());
  for (const RegistryValue& value : key->values()) {
    longestName = std::max(longestName, nameLength(value.name));
    longestData = std::max(longestData, dataLength(value));
  }
  put(lpcSubKeys, key->subKeys().size());
  put(lpcbMaxSubKeyLen, longestSubKey);
  put(lpcbMaxClassLen, 0);
  put(lpcValues, key->values().size());
  put(lpcbMaxValueNameLen, longestName);
  put(lpcbMaxValueLen, longestData);
  put(lpcbSecurityDescriptor, 0);
  noWriteTime(lpftLastWriteTime);
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                        LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                        PFILETIME lpftLastWriteTime) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegEnumKeyExA", Reports::ByReturnValue)) return *failed;
  if (!lpName || !lpcchName || lpReserved || (lpClass && !lpcchClass))
    return ERROR_INVALID_PARAMETER;
  const RegistryKey* key = nullptr;
  if (LSTATUS error = keyFor(hKey, KEY_ENUMERATE_SUB_KEYS, key)) return error;
  const RegistryKey::SubKeys& subKeys = key->subKeys();
  if (dwIndex >= subKeys.size()) return ERROR_NO_MORE_ITEMS;
  readAhead(subKeys, dwIndex);
  std::string name = ansi(subKeys[dwIndex]->name());
  // The name and its terminator must fit; the count stays as it was when they do not.
  if (name.size() >= *lpcchName || (lpcchClass && *lpcchClass == 0)) return ERROR_MORE_DATA;
  std::memcpy(lpName, name.c_str(), name.size() + 1);
  put(lpcchName, name.size());
  if (lpClass) *lpClass = '\0';
  put(lpcchClass, 0);
  noWriteTime(lpftLastWriteTime);
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName,
                                        LPDWORD lpcchValueName, LPDWORD lpReserved, LPDWORD lpType,
                                        LPBYTE lpData, LPDWORD lpcbData) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegEnumValueA", Reports::ByReturnValue)) return *failed;
  if (!lpValueName || !lpcchValueName || lpReserved || (lpData && !lpcbData))
    return ERROR_INVALID_PARAMETER;
  const RegistryKey* key = nullptr;
  if (LSTATUS error = keyFor(hKey, KEY_QUERY_VALUE, key)) return error;
  const std::vector<RegistryValue>& values = key->values();
  if (dwIndex >= values.size()) return ERROR_NO_MORE_ITEMS;
  const RegistryValue& value = values[dwIndex];
  std::string name = ansi(value.name);
  DataOutput output(value, lpData, lpcbData);
  if (lpType) *lpType = value.type;
  // Nothing is copied unless both fit; the data size is reported either way.
  if (name.size() >= *lpcchValueName || !output.fits()) {
    output.reportSize();
    return ERROR_MORE_DATA;
  }
  std::memcpy(lpValueName, name.c_str(), name.size() + 1);
  put(lpcchValueName, name.size());
  output.write();
  return ERROR_SUCCESS;
}

extern "C" LSTATUS WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved,
                                           LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData) {
  using namespace winapi;
  if (auto failed = injected<LSTATUS>("RegQueryValueExA", Reports::ByReturnValue)) return *failed;
  if (lpReserved || (lpData && !lpcbData)) return ERROR_INVALID_PARAMETER;
  const RegistryKey* key = nullptr;
  if (LSTATUS error = keyFor(hKey, KEY_QUERY_VALUE, key)) return error;
  // A null or empty name is the default value.
  const RegistryValue* value = key->value(valueName(lpValueName));
  if (!value) return ERROR_FILE_NOT_FOUND;
  if (lpType) *lpType = value->type;
  DataOutput output(*value, lpData, lpcbData);
  if (!output.fits()) {
    output.reportSize();
    return ERROR_MORE_DATA;
  }
  output.write();
  return ERROR_SUCCESS;
}
