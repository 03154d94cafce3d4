// A hash table, open and probed in sequence, of the places of keys that lie elsewhere. Its slots
// are as narrow as the number of places allows; the bits that places leave free hold some of the
// key's hash, so that few other keys are looked at in vain. A few keys are quicker found one after
// the other and need no table.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

class PlaceIndex {
 public:
  // A view of `BytesFor(capacity)` bytes, which begin as zeros.
  PlaceIndex(void* slots, std::size_t capacity)
      : slots_(static_cast<unsigned char*>(slots)),
        count_(SlotsFor(capacity)),
        width_(WidthFor(capacity)),
        place_mask_(std::bit_ceil(capacity + 1) - 1) {}

  static bool IsNeededFor(std::size_t capacity) { return capacity > 8; }
  static std::size_t BytesFor(std::size_t capacity) {
    return IsNeededFor(capacity) ? SlotsFor(capacity) * WidthFor(capacity) : 0;
  }

  static constexpr std::size_t kNone = SIZE_MAX;

  // The place of a key with that hash for which `is_it(place)` holds, or `kNone`.
  template <typename IsIt>
  std::size_t Find(std::size_t hash, IsIt&& is_it) const {
    for (std::size_t slot = First(hash);; slot = Next(slot)) {
      std::size_t const value = Get(slot);
      if (value == 0) return kNone;
      if (((value ^ Tagged(hash)) & TagMask()) != 0) continue;
      std::size_t const place = (value & place_mask_) - 1;
      if (is_it(place)) return place;
    }
  }

  // Has the place where a search begins brought near, for a table much larger than the cache.
  void Prefetch(std::size_t hash) const { __builtin_prefetch(slots_ + First(hash) * width_, 1); }

  // Enters a key that is known to be absent.
  void Add(std::size_t hash, std::size_t place) {
    std::size_t slot = First(hash);
    while (Get(slot) != 0) slot = Next(slot);
    Set(slot, Tagged(hash) | (place + 1));
  }

  // The key at a place, which is in the index, has moved to another.
  void Move(std::size_t hash, std::size_t from, std::size_t to) {
    Set(SlotOf(hash, from), Tagged(hash) | (to + 1));
  }

  // Takes out the key at a place. Keys behind it move into the gap unless that would put them
  // before their first slot, so that no search ends early. `hash_of(place)` hashes the key at a
  // place.
  template <typename HashOf>
  void Remove(std::size_t place, HashOf&& hash_of) {
    std::size_t gap = SlotOf(hash_of(place), place);
    for (std::size_t slot = Next(gap); Get(slot) != 0; slot = Next(slot)) {
      std::size_t const value = Get(slot);
      std::size_t const first = First(hash_of((value & place_mask_) - 1));
      if (Distance(first, slot) < Distance(gap, slot)) continue;
      Set(gap, value);
      gap = slot;
    }
    Set(gap, 0);
  }

 private:
  // By the lower half of the hash: as far into the table as that is into all its values.
  std::size_t First(std::size_t hash) const {
    __extension__ using Product = unsigned __int128;
    return static_cast<std::size_t>(static_cast<Product>(std::rotl(hash, 32)) * count_ >> 64);
  }
  std::size_t Next(std::size_t slot) const { return slot + 1 == count_ ? 0 : slot + 1; }
  std::size_t Distance(std::size_t from, std::size_t to) const {
    return to >= from ? to - from : to + count_ - from;
  }
  std::size_t SlotOf(std::size_t hash, std::size_t place) const {
    std::size_t slot = First(hash);
    while ((Get(slot) & place_mask_) != place + 1) slot = Next(slot);
    return slot;
  }

  // The upper part of a slot, from bits of the hash that do not tell the first slot.
  std::size_t TagMask() const { return (SIZE_MAX >> (64 - 8 * width_)) & ~place_mask_; }
  std::size_t Tagged(std::size_t hash) const { return (hash >> 32) & TagMask(); }

  // The place and one, and the tag above it; 0 for an empty slot.
  std::size_t Get(std::size_t slot) const {
    switch (width_) {
      case 1:
        return slots_[slot];
      case 2:
        return Load<std::uint16_t>(slot);
      case 4:
        return Load<std::uint32_t>(slot);
      default:
        return Load<std::uint64_t>(slot);
    }
  }
  void Set(std::size_t slot, std::size_t value) {
    switch (width_) {
      case 1:
        return Store<std::uint8_t>(slot, value);
      case 2:
        return Store<std::uint16_t>(slot, value);
      case 4:
        return Store<std::uint32_t>(slot, value);
      default:
        return Store<std::uint64_t>(slot, value);
    }
  }

  // Two in three are taken. No power of two, which could be twice as much.
  static std::size_t SlotsFor(std::size_t capacity) { return capacity + capacity / 2 + 1; }
  static unsigned WidthFor(std::size_t capacity) {
    return capacity <= UINT8_MAX ? 1 : capacity <= UINT16_MAX ? 2 : capacity <= UINT32_MAX ? 4 : 8;
  }

  template <typename Slot>
  std::size_t Load(std::size_t slot) const {
    Slot value;
    std::memcpy(&value, slots_ + slot * sizeof value, sizeof value);
    return value;
  }
  template <typename Slot>
  void Store(std::size_t slot, std::size_t value) {
    auto const narrow = static_cast<Slot>(value);
    std::memcpy(slots_ + slot * sizeof narrow, &narrow, sizeof narrow);
  }

  unsigned char* slots_;
  std::size_t count_;  // Of slots.
  unsigned width_;
  std::size_t place_mask_;
};
