// A hash table, open and probed in sequence, of the places of keys that lie elsewhere. Its slots
// are as narrow as the number of places allows. A few keys are quicker found one after the other
// and need none.
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
        mask_(SlotsFor(capacity) - 1),
        width_(WidthFor(capacity)) {}

  static bool IsNeededFor(std::size_t capacity) { return capacity > 8; }
  static std::size_t BytesFor(std::size_t capacity) {
    return IsNeededFor(capacity) ? SlotsFor(capacity) * WidthFor(capacity) : 0;
  }

  // The first slot for a hash, and the one that follows.
  std::size_t First(std::size_t hash) const { return hash & mask_; }
  std::size_t Next(std::size_t slot) const { return (slot + 1) & mask_; }
  // How often `Next` leads from one to the other.
  std::size_t Distance(std::size_t from, std::size_t to) const { return (to - from) & mask_; }

  // One more than the place, or 0 for an empty slot.
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
  void Set(std::size_t slot, std::size_t place_and_one) {
    switch (width_) {
      case 1:
        slots_[slot] = static_cast<unsigned char>(place_and_one);
        return;
      case 2:
        return Store<std::uint16_t>(slot, place_and_one);
      case 4:
        return Store<std::uint32_t>(slot, place_and_one);
      default:
        return Store<std::uint64_t>(slot, place_and_one);
    }
  }

  // Enters a key that is known to be absent.
  void Add(std::size_t hash, std::size_t place) {
    std::size_t slot = First(hash);
    while (Get(slot) != 0) slot = Next(slot);
    Set(slot, place + 1);
  }

 private:
  // At most four in five are taken.
  static std::size_t SlotsFor(std::size_t capacity) {
    return std::bit_ceil(capacity + capacity / 4 + 1);
  }
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
  void Store(std::size_t slot, std::size_t place_and_one) {
    auto const value = static_cast<Slot>(place_and_one);
    std::memcpy(slots_ + slot * sizeof value, &value, sizeof value);
  }

  unsigned char* slots_;
  std::size_t mask_;
  unsigned width_;
};
