#include "vrxcore/path_index.h"

#include <algorithm>

namespace NZARVEK20 {

TRepositoryInstance* TPathIndex::Removed() {
  // An address no instance has.
  static char marker;
  return reinterpret_cast<TRepositoryInstance*>(&marker);
}

void TPathIndex::Insert(size_t hash, TRepositoryInstance* instance) {
  if (2 * (taken_ + 1) > slots_.size()) {
    // Erased slots are left behind as the rest move to a table of at most a quarter taken.
    size_t size = 16;
    while (size < 4 * (live_ + 1)) size *= 2;
    std::vector<TSlot> old(size, TSlot{0, nullptr});
    old.swap(slots_);
    taken_ = live_ = 0;
    for (const TSlot& slot : old)
      if (slot.instance && slot.instance != Removed()) Insert(slot.hash, slot.instance);
  }
  size_t at = hash & Mask();
  while (slots_[at].instance) at = (at + 1) & Mask();
  slots_[at] = TSlot{hash, instance};
  ++taken_;
  ++live_;
}

}  // namespace NZARVEK20
