// How far a long load has come, on a terminal only: one line on standard error, redrawn in place
// (files done of all, snapshots written, files a second), never into a pipe, a log or a file.
#pragma once

#include <chrono>
#include <cstddef>

namespace vrxstore {

class LoadProgress {
 public:
  explicit LoadProgress(std::size_t files);
  ~LoadProgress();
  LoadProgress(const LoadProgress&) = delete;
  LoadProgress& operator=(const LoadProgress&) = delete;

  // Before a line of the program's own goes out: the progress line makes room for it.
  void clear() const;
  // One file loaded; `written` when it made a new snapshot.
  void fileDone(bool written);

 private:
  void draw() const;

  bool shown_;
  std::size_t files_;
  std::size_t done_ = 0;
  std::size_t written_ = 0;
  std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

}  // namespace vrxstore
