#include "tools/vrxstore/progress.h"

#include <cstdio>

namespace vrxstore {

void LoadProgress::fileDone(bool written) {
  ++done_;
  if (written) ++written_;
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
  char text[128];
  std::snprintf(text, sizeof text, "%zu/%zu files, %zu snapshots written, %.0f files/s", done_,
                files_, written_, seconds > 0 ? static_cast<double>(done_) / seconds : 0.0);
  line_.Show(text);
}

}  // namespace vrxstore
