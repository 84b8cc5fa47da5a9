#include "frame/log_message.h"

#include "frame/platform.h"
#include "host/root_object.h"

namespace installedapps_col {

LogMessage* LogMessage::instance = nullptr;
NZARVEK20::TPluginManagerProvider* LogMessage::provider = nullptr;

LogMessage* LogMessage::getInstance() {
  // First called under the library loader, before any other thread can
  // reach the plug-in; never deleted.
  if (!instance) instance = new LogMessage;
  return instance;
}

void LogMessage::setProvider(NZARVEK20::TPluginManagerProvider* registered) {
  provider = registered;
}

void LogMessage::log(int level, const std::string& message) {
  if (!provider || message.empty()) return;
  NZARVEK20::TRootObject::GetCoreLogger()->Log(level, message);
}

void LogMessage::logError(const std::string& message) { log(0, message); }
void LogMessage::logDebug(const std::string& message) { log(3, message); }
void LogMessage::logTrace(const std::string& message) { log(4, message); }

std::string LogMessage::getSystemErrorText(unsigned int errorCode) {
  char* buffer = nullptr;
  const DWORD length = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, errorCode, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
      reinterpret_cast<LPSTR>(&buffer), 0, nullptr);
  if (length == 0) return std::string();
  std::string text(buffer, length);
  LocalFree(buffer);
  return text;
}

}  // namespace installedapps_col
