#include "components/inf_file.h"

namespace installedapps_col {

namespace {

constexpr DWORD kTextSize = 256;

}  // namespace

InfFile::InfFile(const std::string& name)
    : handle(SetupOpenInfFileA(name.c_str(), nullptr, INF_STYLE_WIN4, nullptr)) {}

InfFile::~InfFile() {
  if (isOpen()) SetupCloseInfFile(handle);
}

bool InfFile::findFirstLine(const char* section, const char* key, INFCONTEXT* context) const {
  return isOpen() && SetupFindFirstLineA(handle, section, key, context);
}

long InfFile::lineCount(const char* section) const {
  return isOpen() ? SetupGetLineCountA(handle, section) : -1;
}

bool InfFile::lineByIndex(const char* section, DWORD index, INFCONTEXT* context) const {
  return isOpen() && SetupGetLineByIndexA(handle, section, index, context);
}

std::string InfFile::keyText(const char* section, const char* key) const {
  INFCONTEXT context;
  return findFirstLine(section, key, &context) ? lineText(&context) : std::string();
}

std::string InfFile::lineText(INFCONTEXT* context) {
  char buffer[kTextSize] = {};
  if (!SetupGetLineTextA(context, nullptr, nullptr, nullptr, buffer, kTextSize, nullptr))
    return std::string();
  return buffer;
}

std::string InfFile::stringField(INFCONTEXT* context, DWORD field) {
  char buffer[kTextSize] = {};
  if (!SetupGetStringFieldA(context, field, buffer, kTextSize, nullptr)) return std::string();
  return buffer;
}

}  // namespace installedapps_col
