#include "vrxcore/terminal_line.h"

#include <unistd.h>

#include <cstdio>

namespace NZARVEK20 {

TTerminalLine::TTerminalLine() : shown_(isatty(STDERR_FILENO) == 1) {}

TTerminalLine::~TTerminalLine() { Clear(); }

void TTerminalLine::Show(const std::string& text) const {
  if (!shown_) return;
  std::fprintf(stderr, "\r\033[K%s", text.c_str());
  std::fflush(stderr);
}

void TTerminalLine::Clear() const {
  if (shown_) std::fprintf(stderr, "\r\033[K");
}

}  // namespace NZARVEK20
