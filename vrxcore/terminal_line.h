// One line of progress on standard error, drawn over itself, shown only when standard error is a
// terminal: never in a pipe, a log or a file.
#pragma once

#include <string>

namespace NZARVEK20 {

class TTerminalLine {
 public:
  TTerminalLine();
  ~TTerminalLine();
  TTerminalLine(const TTerminalLine&) = delete;
  TTerminalLine& operator=(const TTerminalLine&) = delete;

  void Show(const std::string& text) const;
  // Before a line of the program's own goes out, and when the work is done.
  void Clear() const;

 private:
  bool shown_;
};

}  // namespace NZARVEK20
