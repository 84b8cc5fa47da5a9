// How far a long load has come, on a terminal only (files done of all, snapshots written, files a
// second).
#pragma once

#include <chrono>
#include <cstddef>

#include "vrxcore/terminal_line.h"

namespace vrxstore {

class LoadProgress {
 public:
  explicit LoadProgress(std::size_t files) : files_(files) {}

  // Before a line of the program's own goes out: the progress line makes room for it.
  void clear() const { line_.Clear(); }
  // One file loaded; `written` when it made a new snapshot.
  void fileDone(bool written);

 private:
  NZARVEK20::TTerminalLine line_;
  std::size_t files_;
  std::size_t done_ = 0;
  std::size_t written_ = 0;
  std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace vrxstore
