// Value lines of .reg text, as regedit exports them, for the registries and hives tests make.
#ifndef VRX_TESTS_WINAPI_REG_TEXT_VALUES_H
#define VRX_TESTS_WINAPI_REG_TEXT_VALUES_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// A key with its value lines.
inline std::string regKey(const std::string& path, const std::string& values) {
  return "[" + path + "]\r\n" + values + "\r\n";
}

// A string value line; `text` needs no escaping.
inline std::string stringValue(const std::string& name, const std::string& text) {
  return "\"" + name + "\"=\"" + text + "\"\r\n";
}

inline std::string dwordValue(const std::string& name, std::uint32_t number) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "%08x", number);
  return "\"" + name + "\"=dword:" + hex + "\r\n";
}

// `bytes` as hex: (REG_BINARY) or hex(type):.
inline std::string hexValue(const std::string& name, const std::string& bytes,
                            const std::string& type = "") {
  std::string line = "\"" + name + "\"=hex" + (type.empty() ? "" : "(" + type + ")") + ":";
  char hex[4];
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(hex, sizeof hex, "%s%02x", i ? "," : "", static_cast<unsigned char>(bytes[i]));
    line += hex;
  }
  return line + "\r\n";
}

// ASCII text as the UTF-16LE bytes of a registry string, without a terminator.
inline std::string utf16Bytes(const std::string& text) {
  std::string bytes;
  for (char c : text) bytes += std::string{c, '\0'};
  return bytes;
}

// A REG_MULTI_SZ value line, UTF-16 as regedit exports it.
inline std::string multiStringValue(const std::string& name,
                                    const std::vector<std::string>& texts) {
  std::string bytes;
  for (const std::string& text : texts) bytes += utf16Bytes(text) + std::string(2, '\0');
  return hexValue(name, bytes + std::string(2, '\0'), "7");
}

#endif
