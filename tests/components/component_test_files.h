// What the component tests share: the files with version resources that the
// build made for them, and a machine with files on its C: drive.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "tests/os/os_test_machine.h"

namespace installedapps_col {

// The bytes of a file that the build made; empty when it could not make it.
inline std::string versionedFile(const std::string& name) {
  std::ifstream in(std::string(VRX_VERSIONED_FILES) + "/" + name, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline bool haveVersionedFiles() { return !versionedFile("plain.dll").empty(); }

// The text of an INF file with Windows line ends.
inline std::string infText(const std::string& text) {
  std::string crlf;
  for (char c : text) {
    if (c == '\n') crlf += '\r';
    crlf += c;
  }
  return crlf;
}

}  // namespace installedapps_col
