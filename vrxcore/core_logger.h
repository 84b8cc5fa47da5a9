// The host's core logger: every line goes to each sink whose level admits it.
#pragma once

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/logger.h"

namespace NZARVEK20 {

class ILogSink {
 public:
  virtual ~ILogSink() {}
  virtual void Write(int level, const std::string& message) = 0;
};

class TCoreLogger : public ILogger {
 public:
  static TCoreLogger& Instance();

  // `sink` gets the lines of level `maxLevel` and below.
  void AddSink(std::shared_ptr<ILogSink> sink, int maxLevel);
  void RemoveSinks();

  bool IsEnabled(int level) const override;
  void Log(int level, const std::string& message) override;

 private:
  std::vector<std::pair<std::shared_ptr<ILogSink>, int>> sinks_;
};

// One line per message: the level, a tab, the message, a newline; flushed
// at once so that a run that dies keeps its log.
class TFileLogSink : public ILogSink {
 public:
  // Throws std::runtime_error naming the file when it cannot be opened.
  explicit TFileLogSink(const std::string& path);
  void Write(int level, const std::string& message) override;

 private:
  std::ofstream file_;
};

// Keeps the lines, for tests and for hosts that show them later.
class TMemoryLogSink : public ILogSink {
 public:
  void Write(int level, const std::string& message) override { lines.emplace_back(level, message); }
  std::vector<std::pair<int, std::string>> lines;
};

}  // namespace NZARVEK20
