#include "winapi/machine/registry_values.h"

#include "winapi/formats/reg_text.h"
#include "winapi/include/windows.h"
#include "winapi/support/little_endian.h"

namespace winapi {

RegistryPath below(RegistryPath path, std::initializer_list<const wchar_t*> names) {
  path.insert(path.end(), names.begin(), names.end());
  return path;
}

const RegistryValue* valueAt(const RegistryKey& root, const RegistryPath& path,
                             const wchar_t* name) {
  const RegistryKey* key = root.find(path);
  return key ? key->value(name) : nullptr;
}

bool isText(const RegistryValue& value) {
  return value.type == REG_SZ || value.type == REG_EXPAND_SZ;
}

std::string textOf(const RegistryValue& value) {
  std::wstring text = fromUtf16Bytes(value.data);
  return toUtf8(text.substr(0, text.find(L'\0')));
}

std::optional<std::string> textAt(const RegistryKey& root, const RegistryPath& path,
                                  const wchar_t* name) {
  const RegistryValue* value = valueAt(root, path, name);
  if (!value || !isText(*value)) return std::nullopt;
  return textOf(*value);
}

std::optional<std::uint32_t> dwordAt(const RegistryKey& root, const RegistryPath& path,
                                     const wchar_t* name) {
  const RegistryValue* value = valueAt(root, path, name);
  if (!value || value->type != REG_DWORD || value->data.size() != 4) return std::nullopt;
  return littleEndian(value->data, 0, 4);
}

std::optional<std::vector<std::string>> wordsAt(const RegistryKey& root, const RegistryPath& path,
                                                const wchar_t* name) {
  const RegistryValue* value = valueAt(root, path, name);
  if (!value || value->type != REG_MULTI_SZ) return std::nullopt;
  std::wstring text = fromUtf16Bytes(value->data);
  std::vector<std::string> words;
  for (std::size_t at = 0, end; at < text.size(); at = end + 1) {
    end = std::min(text.find(L'\0', at), text.size());
    if (end > at) words.push_back(toUtf8(text.substr(at, end - at)));
  }
  return words;
}

std::optional<std::string> bytesAt(const RegistryKey& root, const RegistryPath& path,
                                   const wchar_t* name, std::size_t size) {
  const RegistryValue* value = valueAt(root, path, name);
  if (!value || value->data.size() != size) return std::nullopt;
  return std::string(value->data);
}

}  // namespace winapi
