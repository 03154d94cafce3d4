#include "frameworks/CoreFoundation/dictionary_object.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frameworks/CoreFoundation/container_equality.h"
#include "frameworks/CoreFoundation/hash.h"

// `kNone` of an index is `kCFNotFound` of an array.
static_assert(static_cast<CFIndex>(PlaceIndex::kNone) == kCFNotFound);

namespace {

CFHashCode HashKey(void const* key, bool is_object) {
  return is_object && key != nullptr ? CFHash(key) : HashWord(reinterpret_cast<UInt64>(key));
}

std::size_t FindAmong(void const* const* keys, std::size_t count, void const* key,
                      bool are_objects) {
  for (std::size_t i = 0; i < count; ++i) {
    if (AreEqualValues(keys[i], key, are_objects)) return i;
  }
  return PlaceIndex::kNone;
}

std::size_t FindByIndex(void const* const* keys, PlaceIndex index, CFHashCode hash, void const* key,
                        bool are_objects) {
  return index.Find(
      hash, [&](std::size_t place) { return AreEqualValues(keys[place], key, are_objects); });
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
    CFHashCode const hash = has_index ? HashKey(keys[i], holds_object_keys()) : 0;
    std::size_t const found = has_index
                                  ? FindByIndex(keys, index, hash, keys[i], holds_object_keys())
                                  : FindAmong(keys, kept, keys[i], holds_object_keys());
    if (found == PlaceIndex::kNone) {
      keys[kept] = keys[i];
      values[kept] = values[i];
      if (has_index) index.Add(hash, kept);
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
  bool const are_objects = holds_object_keys();
  if (are_objects && key == nullptr) return kCFNotFound;
  bool const has_index = is_mutable() ? !static_cast<MutableDictionary const*>(this)->slots_.empty()
                                      : PlaceIndex::IsNeededFor(count_);
  if (!has_index) {
    return static_cast<CFIndex>(FindAmong(keys(), count(), key, are_objects));
  }
  PlaceIndex const index =
      is_mutable() ? static_cast<MutableDictionary const*>(this)->index() : InlineIndex();
  return static_cast<CFIndex>(
      FindByIndex(keys(), index, HashKey(key, are_objects), key, are_objects));
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
    auto const hash_of = [this](std::size_t i) { return HashKey(keys_[i], holds_object_keys()); };
    index().Remove(place, hash_of);
    if (place != last) index().Move(hash_of(last), last, place);
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
