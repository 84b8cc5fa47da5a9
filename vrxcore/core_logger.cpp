#include "vrxcore/core_logger.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace NZARVEK20 {

TCoreLogger& TCoreLogger::Instance() {
  static TCoreLogger* logger = new TCoreLogger;  // lives as long as the process
  return *logger;
}

void TCoreLogger::AddSink(std::shared_ptr<ILogSink> sink, int maxLevel) {
  sinks_.emplace_back(std::move(sink), maxLevel);
}

void TCoreLogger::RemoveSinks() { sinks_.clear(); }

bool TCoreLogger::IsEnabled(int level) const {
  for (const auto& sink : sinks_)
    if (level <= sink.second) return true;
  return false;
}

void TCoreLogger::Log(int level, const std::string& message) {
  for (const auto& sink : sinks_)
    if (level <= sink.second) sink.first->Write(level, message);
}

TFileLogSink::TFileLogSink(const std::string& path)
    : file_(path, std::ios::binary | std::ios::trunc) {
  if (!file_) throw std::runtime_error(path + ": cannot write the log: " + std::strerror(errno));
}

void TFileLogSink::Write(int level, const std::string& message) {
  file_ << level << '\t' << message << '\n';
  file_.flush();
}

}  // namespace NZARVEK20
