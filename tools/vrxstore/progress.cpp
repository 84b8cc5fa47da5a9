#include "tools/vrxstore/progress.h"

#include <unistd.h>

#include <cstdio>

namespace vrxstore {

LoadProgress::LoadProgress(std::size_t files) : shown_(isatty(STDERR_FILENO) == 1), files_(files) {}

LoadProgress::~LoadProgress() { clear(); }

void LoadProgress::clear() const {
  if (shown_) std::fprintf(stderr, "\r\033[K");
}

void LoadProgress::fileDone(bool written) {
  ++done_;
  if (written) ++written_;
  draw();
}

void LoadProgress::draw() const {
  if (!shown_) return;
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
  std::fprintf(stderr, "\r\033[K%zu/%zu files, %zu snapshots written, %.0f files/s", done_, files_,
               written_, seconds > 0 ? static_cast<double>(done_) / seconds : 0.0);
  std::fflush(stderr);
}

}  // namespace vrxstore
