#include "frameworks/CoreFoundation/dictionary_object.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frameworks/CoreFoundation/container_equality.h"
#include "frameworks/CoreFoundation/hash.h"

namespace {

CFHashCode HashKey(void const* key, bool is_object) {
  return is_object && key != nullptr ? CFHash(key) : HashWord(reinterpret_cast<UInt64>(key));
}

// The place of a key among the first `count`, which the index knows where there is one.
CFIndex FindPlace(void const* const* keys, std::size_t count, PlaceIndex index, bool has_index,
                  void const* key, bool are_objects) {
  if (!has_index) {
    for (std::size_t i = 0; i < count; ++i) {
      if (AreEqualValues(keys[i], key, are_objects)) return static_cast<CFIndex>(i);
    }
    return kCFNotFound;
  }
  std::size_t slot = index.First(HashKey(key, are_objects));
  for (; index.Get(slot) != 0; slot = index.Next(slot)) {
    std::size_t const place = index.Get(slot) - 1;
    if (AreEqualValues(keys[place], key, are_objects)) return static_cast<CFIndex>(place);
  }
  return kCFNotFound;
}

void Drop(CFTypeRef object, std::vector<CFTypeRef>* dropped) {
  if (dropped != nullptr) {
    dropped->push_back(object);
  } else {
    ReleaseValue(object, true);
  }
}

}  // namespace

__CFDictionary* __CFDictionary::MakeUnfilled(std::size_t capacity, UInt8 variant) {
  std::size_t const room = 2 * capacity * sizeof(void*) + PlaceIndex::BytesFor(capacity);
  auto* const dictionary = CFObject::MakeWithRoom<__CFDictionary>(room, variant, capacity);
  std::memset(dictionary->Inline(), 0, room);
  return dictionary;
}

CFDictionaryRef __CFDictionary::MakeTaking(std::span<CFTypeRef const> keys_and_values, Keep keep) {
  std::size_t const count = keys_and_values.size() / 2;
  __CFDictionary* const dictionary = MakeUnfilled(count);
  for (std::size_t i = 0; i < count; ++i) {
    dictionary->TakeKey(i, keys_and_values[2 * i]);
    dictionary->TakeValue(i, keys_and_values[2 * i + 1]);
  }
  dictionary->Settle(keep);
  return dictionary;
}

PlaceIndex __CFDictionary::InlineIndex() const {
  return {const_cast<void const**>(Inline() + 2 * count_), count_};
}

void __CFDictionary::Settle(Keep keep, std::vector<CFTypeRef>* dropped) {
  void const** const keys = Inline();
  void const** const values = keys + count_;
  bool const has_index = PlaceIndex::IsNeededFor(count_);
  PlaceIndex index = InlineIndex();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count_; ++i) {
    CFIndex const found = FindPlace(keys, kept, index, has_index, keys[i], holds_object_keys());
    if (found == kCFNotFound) {
      keys[kept] = keys[i];
      values[kept] = values[i];
      if (has_index) index.Add(HashKey(keys[kept], holds_object_keys()), kept);
      ++kept;
      continue;
    }
    if (keep == Keep::kLast) std::swap(values[found], values[i]);
    if (holds_object_keys()) Drop(keys[i], dropped);
    if (holds_object_values()) Drop(values[i], dropped);
  }
  if (kept != count_) Shrink(kept);
}

void __CFDictionary::Shrink(std::size_t kept) {
  void const** const values = Inline() + count_;
  std::copy(values, values + kept, Inline() + kept);
  count_ = kept;
  if (!PlaceIndex::IsNeededFor(kept)) return;
  std::memset(Inline() + 2 * kept, 0, PlaceIndex::BytesFor(kept));
  PlaceIndex index = InlineIndex();
  for (std::size_t i = 0; i < kept; ++i) index.Add(HashKey(Inline()[i], holds_object_keys()), i);
}

std::size_t __CFDictionary::count() const {
  return is_mutable() ? static_cast<MutableDictionary const*>(this)->keys_.size() : count_;
}

void const* const* __CFDictionary::keys() const {
  return is_mutable() ? static_cast<MutableDictionary const*>(this)->keys_.data() : Inline();
}

void const* const* __CFDictionary::values() const {
  if (is_mutable()) return static_cast<MutableDictionary const*>(this)->values_.data();
  return Inline() + count_;
}

CFIndex __CFDictionary::Find(void const* key) const {
  if (holds_object_keys() && key == nullptr) return kCFNotFound;
  if (!is_mutable()) {
    return FindPlace(Inline(), count_, InlineIndex(), PlaceIndex::IsNeededFor(count_), key,
                     holds_object_keys());
  }
  auto const& self = *static_cast<MutableDictionary const*>(this);
  return FindPlace(self.keys_.data(), self.keys_.size(), self.index(), !self.slots_.empty(), key,
                   holds_object_keys());
}

__CFDictionary::~__CFDictionary() {
  if (is_mutable()) return;
  for (std::size_t i = 0; i < count_; ++i) {
    ReleaseValue(Inline()[i], holds_object_keys());
    ReleaseValue(Inline()[count_ + i], holds_object_values());
  }
}

bool __CFDictionary::EqualTo(CFObject const& other) const {
  return AreEqualContainers(*this, other);
}

CFHashCode __CFDictionary::Hash() const { return HashWord(~static_cast<UInt64>(count())); }

MutableDictionary::~MutableDictionary() { Clear(); }

void MutableDictionary::Add(void const* key, void const* value) {
  keys_.push_back(key);
  values_.push_back(value);
  RetainValue(key, holds_object_keys());
  RetainValue(value, holds_object_values());
  if (keys_.size() > capacity_) {
    Reindex(2 * keys_.size());
  } else if (!slots_.empty()) {
    index().Add(HashKey(key, holds_object_keys()), keys_.size() - 1);
  }
}

void MutableDictionary::Replace(std::size_t place, void const* value) {
  RetainValue(value, holds_object_values());
  ReleaseValue(std::exchange(values_[place], value), holds_object_values());
}

void MutableDictionary::Remove(std::size_t place) {
  void const* const key = keys_[place];
  void const* const value = values_[place];
  std::size_t const last = keys_.size() - 1;
  if (!slots_.empty()) {
    Vacate(SlotOf(place));
    if (place != last) index().Set(SlotOf(last), place + 1);
  }
  keys_[place] = keys_[last];
  values_[place] = values_[last];
  keys_.pop_back();
  values_.pop_back();
  ReleaseValue(key, holds_object_keys());
  ReleaseValue(value, holds_object_values());
}

void MutableDictionary::Clear() {
  auto const keys = std::exchange(keys_, {});
  auto const values = std::exchange(values_, {});
  slots_.clear();
  capacity_ = 0;
  for (void const* const key : keys) ReleaseValue(key, holds_object_keys());
  for (void const* const value : values) ReleaseValue(value, holds_object_values());
}

void MutableDictionary::Reindex(std::size_t capacity) {
  capacity_ = capacity;
  slots_.assign(PlaceIndex::BytesFor(capacity), 0);
  if (slots_.empty()) return;
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    index().Add(HashKey(keys_[i], holds_object_keys()), i);
  }
}

std::size_t MutableDictionary::SlotOf(std::size_t place) const {
  std::size_t slot = index().First(HashKey(keys_[place], holds_object_keys()));
  while (index().Get(slot) != place + 1) slot = index().Next(slot);
  return slot;
}

// Keys behind the gap move into it unless that would put them before their first slot, so that no
// search ends early.
void MutableDictionary::Vacate(std::size_t gap) {
  for (std::size_t slot = index().Next(gap); index().Get(slot) != 0; slot = index().Next(slot)) {
    std::size_t const place = index().Get(slot) - 1;
    std::size_t const first = index().First(HashKey(keys_[place], holds_object_keys()));
    if (index().Distance(first, slot) < index().Distance(gap, slot)) continue;
    index().Set(gap, place + 1);
    gap = slot;
  }
  index().Set(gap, 0);
}
