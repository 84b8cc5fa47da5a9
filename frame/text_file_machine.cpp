// Files of the machine are read whole, wherever the machine keeps them, and
// given the line ends that text mode gives on Windows.
#include <sstream>

#include "frame/text_file.h"
#include "winapi/machine/machine.h"
#include "winapi/support/code_pages.h"
#include "winapi/support/file_descriptor.h"

namespace installedapps_col {

namespace {

// Text mode's reading: CR LF becomes LF, and a Ctrl-Z ends the file.
std::string asTextMode(const std::string& bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (size_t i = 0; i < bytes.size() && bytes[i] != '\x1A'; ++i)
    if (!(bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')) text += bytes[i];
  return text;
}

}  // namespace

std::unique_ptr<std::istream> openTextFile(const std::string& path) {
  const winapi::Machine& machine = winapi::currentMachine();
  const auto wide = winapi::decode(machine.ansiCodePage(), path.data(), path.size());
  if (!wide) return nullptr;
  const auto utf8 =
      winapi::encode(winapi::kUtf8CodePage, wide->text.data(), wide->text.size(), "?");
  if (!utf8) return nullptr;
  const auto bytes = winapi::readFileBytes(machine.files().open(utf8->bytes).get());
  if (!bytes) return nullptr;
  return std::make_unique<std::istringstream>(asTextMode(*bytes));
}

}  // namespace installedapps_col
