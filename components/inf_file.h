// One setup INF file, open for the life of the object, whose texts are read
// through buffers of 256 bytes: a text that does not fit counts as absent.
#pragma once

#include <string>

// The SDK headers below need <windows.h> before them.
// clang-format off
#include "frame/platform.h"

#include <setupapi.h>
// clang-format on

namespace installedapps_col {

class InfFile {
 public:
  // A bare file name is looked for in the system's INF directory.
  explicit InfFile(const std::string& name);
  ~InfFile();
  InfFile(const InfFile&) = delete;
  InfFile& operator=(const InfFile&) = delete;

  bool isOpen() const { return handle != INVALID_HANDLE_VALUE; }
  // False when the section, or the line of `key` in it, is not there.
  bool findFirstLine(const char* section, const char* key, INFCONTEXT* context) const;
  long lineCount(const char* section) const;
  bool lineByIndex(const char* section, DWORD index, INFCONTEXT* context) const;
  // The value of the line of `key` in `section`; empty when there is none.
  std::string keyText(const char* section, const char* key) const;

  // The line's value, with the file's string substitutions done.
  static std::string lineText(INFCONTEXT* context);
  // Field 0 is the line's key; a field the line lacks is empty.
  static std::string stringField(INFCONTEXT* context, DWORD field);

 private:
  HINF handle;
};

}  // namespace installedapps_col
