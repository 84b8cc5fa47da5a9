// Committed instances by the hash of their path, in open addressing: a commit among a hundred
// thousand instances reads one slot, not a chain of nodes. Instances whose hashes are equal are
// told apart by the caller, which saves holding every path as text.
#pragma once

#include <cstddef>
#include <vector>

namespace NZARVEK20 {

class TRepositoryInstance;

class TPathIndex {
 public:
  struct TSlot {
    size_t hash;
    TRepositoryInstance* instance;  // nullptr: never taken; Removed(): taken, then erased
  };

  // The slot of the instance under `hash` for which `same(instance)` is true; nullptr when none.
  // Valid until the next Insert.
  template <class TSame>
  TSlot* Find(size_t hash, TSame same) {
    if (slots_.empty()) return nullptr;
    for (size_t at = hash & Mask(); slots_[at].instance; at = (at + 1) & Mask())
      if (slots_[at].hash == hash && slots_[at].instance != Removed() &&
          same(*slots_[at].instance))
        return &slots_[at];
    return nullptr;
  }
  void Insert(size_t hash, TRepositoryInstance* instance);
  // `slot` came from Find. It stays taken, so that the instances after it stay reachable.
  void Erase(TSlot* slot) {
    slot->instance = Removed();
    --live_;
  }
  void Clear() { *this = TPathIndex(); }

 private:
  static TRepositoryInstance* Removed();
  size_t Mask() const { return slots_.size() - 1; }

  std::vector<TSlot> slots_;  // a power of two, at most half of them taken
  size_t taken_ = 0;          // erased ones included
  size_t live_ = 0;
};

}  // namespace NZARVEK20
