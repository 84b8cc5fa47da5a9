// Items held elsewhere, found by a hash of theirs in open addressing with linear probing: a
// lookup among a hundred thousand items reads one slot and the item it leads to, and copies
// nothing. The table keeps the hash, not the key; items whose hashes are equal are told apart by
// the caller. Header-only, for layers that share no code otherwise.
#ifndef VRX_COMMON_OPEN_ADDRESSING_H
#define VRX_COMMON_OPEN_ADDRESSING_H

#include <cstddef>
#include <vector>

namespace common {

template <class Item>
class OpenAddressing {
 public:
  struct Slot {
    std::size_t hash;
    Item* item;  // nullptr: free
  };

  // The slot of the item under `hash` for which `same(item)` is true; nullptr when none. Valid
  // until the next insert or erase.
  template <class Same>
  Slot* find(std::size_t hash, Same same) {
    if (size_ == 0) return nullptr;
    for (std::size_t at = home(hash); slots_[at].item; at = next(at))
      if (slots_[at].hash == hash && same(*slots_[at].item)) return &slots_[at];
    return nullptr;
  }
  template <class Same>
  const Slot* find(std::size_t hash, Same same) const {
    return const_cast<OpenAddressing*>(this)->find(hash, same);
  }

  // `item` is not in the table yet.
  void insert(std::size_t hash, Item* item) {
    if (2 * (size_ + 1) > slots_.size()) {
      std::vector<Slot> old(slots_.empty() ? kFirstSize : 2 * slots_.size(), Slot{0, nullptr});
      old.swap(slots_);
      for (const Slot& slot : old)
        if (slot.item) place(slot);
    }
    place({hash, item});
    ++size_;
  }

  // `slot` came from find. The slots after it, up to a free one, move back into the hole when
  // their home allows, so that every item stays reachable from its home without passing a free
  // slot.
  void erase(Slot* slot) {
    std::size_t hole = static_cast<std::size_t>(slot - slots_.data());
    for (std::size_t at = next(hole); slots_[at].item; at = next(at)) {
      std::size_t want = home(slots_[at].hash);
      bool reachable = hole <= at ? (want <= hole || want > at) : (want <= hole && want > at);
      if (reachable) {
        slots_[hole] = slots_[at];
        hole = at;
      }
    }
    slots_[hole] = Slot{0, nullptr};
    --size_;
  }

  void clear() { *this = OpenAddressing(); }

 private:
  static constexpr std::size_t kFirstSize = 16;

  std::size_t home(std::size_t hash) const { return hash & (slots_.size() - 1); }
  std::size_t next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }
  void place(Slot slot) {
    std::size_t at = home(slot.hash);
    while (slots_[at].item) at = next(at);
    slots_[at] = slot;
  }

  std::vector<Slot> slots_;  // a power of two, at most half of them taken
  std::size_t size_ = 0;
};

}  // namespace common

#endif
