#include "winapi/image/slow_reads.h"

#include <utility>

namespace winapi {

namespace {

SlowReadProgress& progress() {
  static SlowReadProgress told;
  return told;
}

}  // namespace

void setSlowReadProgress(SlowReadProgress told) { progress() = std::move(told); }

void reportSlowRead(std::uint64_t read, std::uint64_t size) {
  if (progress()) progress()(read, size);
}

}  // namespace winapi
