#include "frameworks/CoreFoundation/dictionary_object.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "frameworks/CoreFoundation/container_equality.h"
#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/pages.h"

// `kNone` of an index is `kCFNotFound` of an array.
static_assert(static_cast<CFIndex>(PlaceIndex::kNone) == kCFNotFound);

namespace {

CFHashCode HashKey(void const* key, bool is_object) {
  return is_object && key != nullptr ? CFHash(key) : HashWord(reinterpret_cast<UInt64>(key));
}

using Pairs = std::span<__CFDictionary::Pair const>;

std::size_t FindAmong(Pairs pairs, void const* key, bool are_objects) {
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (AreEqualValues(pairs[i].key, key, are_objects)) return i;
  }
  return PlaceIndex::kNone;
}

std::size_t FindByIndex(Pairs pairs, PlaceIndex index, CFHashCode hash, void const* key,
                        bool are_objects) {
  return index.Find(
      hash, [&](std::size_t place) { return AreEqualValues(pairs[place].key, key, are_objects); });
}

// The hashes of keys in sequence, each computed some places before it is asked for, so that the
// index has its slot near by then.
class HashesAhead {
 public:
  HashesAhead(Pairs pairs, PlaceIndex index, bool are_objects)
      : pairs_(pairs), index_(index), are_objects_(are_objects) {
    for (std::size_t i = 0; i < std::min(kAhead, pairs_.size()); ++i) Compute(i);
  }

  CFHashCode Take(std::size_t place) {
    CFHashCode const hash = hashes_[place % kAhead];
    if (place + kAhead < pairs_.size()) Compute(place + kAhead);
    return hash;
  }

 private:
  static constexpr std::size_t kAhead = 16;

  void Compute(std::size_t place) {
    CFHashCode const hash = HashKey(pairs_[place].key, are_objects_);
    hashes_[place % kAhead] = hash;
    index_.Prefetch(hash);
  }

  Pairs pairs_;
  PlaceIndex index_;
  bool are_objects_;
  std::array<CFHashCode, kAhead> hashes_;
};

void Drop(CFTypeRef object, std::vector<CFTypeRef>* dropped) {
  if (dropped != nullptr) {
    dropped->push_back(object);
  } else {
    ReleaseValue(object, true);
  }
}

}  // namespace

__CFDictionary* __CFDictionary::MakeUnfilled(std::size_t capacity, UInt8 variant,
                                             ObjectBlocks* blocks) {
  std::size_t const room = BytesFor(capacity) - sizeof(__CFDictionary);
  auto* const dictionary = CFObject::MakeIn<__CFDictionary>(blocks, room, variant);
  FetchPages(dictionary->Inline(), room);
  return dictionary;
}

CFDictionaryRef __CFDictionary::MakeTaking(std::span<CFTypeRef const> keys_and_values, Keep keep,
                                           ObjectBlocks* blocks) {
  std::size_t const count = keys_and_values.size() / 2;
  __CFDictionary* const dictionary = MakeUnfilled(count, kObjects, blocks);
  for (std::size_t i = 0; i < count; ++i) {
    dictionary->TakeKey(keys_and_values[2 * i]);
    dictionary->TakeValue(i, keys_and_values[2 * i + 1]);
  }
  dictionary->Settle(keep);
  return dictionary;
}

CFDictionaryRef __CFDictionary::MakeInMalloced(void* memory, std::size_t count, Keep keep) {
  auto* const dictionary = CFObject::MakeInMalloced<__CFDictionary>(memory, kObjects, count);
  dictionary->Settle(keep);
  return dictionary;
}

PlaceIndex __CFDictionary::InlineIndex() const {
  return {const_cast<Pair*>(Inline() + count_), count_};
}

void __CFDictionary::Settle(Keep keep, std::vector<CFTypeRef>* dropped) {
  Pair* const pairs = Inline();
  bool const has_index = PlaceIndex::IsNeededFor(count_);
  PlaceIndex index = InlineIndex();
  if (has_index) std::memset(pairs + count_, 0, PlaceIndex::BytesFor(count_));
  HashesAhead hashes({pairs, has_index ? count_ : 0}, index, holds_object_keys());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count_; ++i) {
    Pair const pair = pairs[i];
    CFHashCode const hash = has_index ? hashes.Take(i) : 0;
    std::size_t const found =
        has_index ? FindByIndex({pairs, kept}, index, hash, pair.key, holds_object_keys())
                  : FindAmong({pairs, kept}, pair.key, holds_object_keys());
    if (found == PlaceIndex::kNone) {
      pairs[kept] = pair;
      if (has_index) index.Add(hash, kept);
      ++kept;
      continue;
    }
    if (keep == Keep::kLast) std::swap(pairs[found].value, pairs[i].value);
    if (holds_object_keys()) Drop(pair.key, dropped);
    if (holds_object_values()) Drop(pairs[i].value, dropped);
  }
  if (kept != count_) Shrink(kept);
}

void __CFDictionary::Shrink(std::size_t kept) {
  count_ = kept;
  if (!PlaceIndex::IsNeededFor(kept)) return;
  std::memset(Inline() + kept, 0, PlaceIndex::BytesFor(kept));
  PlaceIndex index = InlineIndex();
  for (std::size_t i = 0; i < kept; ++i) {
    index.Add(HashKey(Inline()[i].key, holds_object_keys()), i);
  }
}

std::span<__CFDictionary::Pair const> __CFDictionary::pairs() const {
  if (is_mutable()) return static_cast<MutableDictionary const*>(this)->pairs_;
  return {Inline(), count_};
}

CFIndex __CFDictionary::Find(void const* key) const {
  bool const are_objects = holds_object_keys();
  if (are_objects && key == nullptr) return kCFNotFound;
  bool const has_index = is_mutable() ? !static_cast<MutableDictionary const*>(this)->slots_.empty()
                                      : PlaceIndex::IsNeededFor(count_);
  if (!has_index) {
    return static_cast<CFIndex>(FindAmong(pairs(), key, are_objects));
  }
  PlaceIndex const index =
      is_mutable() ? static_cast<MutableDictionary const*>(this)->index() : InlineIndex();
  return static_cast<CFIndex>(
      FindByIndex(pairs(), index, HashKey(key, are_objects), key, are_objects));
}

__CFDictionary::~__CFDictionary() {
  if (is_mutable()) return;
  for (std::size_t i = 0; i < count_; ++i) {
    ReleaseValue(Inline()[i].key, holds_object_keys());
    ReleaseValue(Inline()[i].value, holds_object_values());
  }
}

bool __CFDictionary::EqualTo(CFObject const& other) const {
  return AreEqualContainers(*this, other);
}

CFHashCode __CFDictionary::Hash() const { return HashWord(~static_cast<UInt64>(pairs().size())); }

MutableDictionary::~MutableDictionary() { Clear(); }

void MutableDictionary::Add(void const* key, void const* value) {
  pairs_.push_back({key, value});
  RetainValue(key, holds_object_keys());
  RetainValue(value, holds_object_values());
  if (pairs_.size() > capacity_) {
    Reindex(2 * pairs_.size());
  } else if (!slots_.empty()) {
    index().Add(HashKey(key, holds_object_keys()), pairs_.size() - 1);
  }
}

void MutableDictionary::Replace(std::size_t place, void const* value) {
  RetainValue(value, holds_object_values());
  ReleaseValue(std::exchange(pairs_[place].value, value), holds_object_values());
}

void MutableDictionary::Remove(std::size_t place) {
  Pair const pair = pairs_[place];
  std::size_t const last = pairs_.size() - 1;
  if (!slots_.empty()) {
    auto const hash_of = [this](std::size_t i) {
      return HashKey(pairs_[i].key, holds_object_keys());
    };
    index().Remove(place, hash_of);
    if (place != last) index().Move(hash_of(last), last, place);
  }
  pairs_[place] = pairs_[last];
  pairs_.pop_back();
  ReleaseValue(pair.key, holds_object_keys());
  ReleaseValue(pair.value, holds_object_values());
}

void MutableDictionary::Clear() {
  auto const pairs = std::exchange(pairs_, {});
  slots_.clear();
  capacity_ = 0;
  for (Pair const& pair : pairs) {
    ReleaseValue(pair.key, holds_object_keys());
    ReleaseValue(pair.value, holds_object_values());
  }
}

void MutableDictionary::Reindex(std::size_t capacity) {
  capacity_ = capacity;
  slots_.assign(PlaceIndex::BytesFor(capacity), 0);
  if (slots_.empty()) return;
  for (std::size_t i = 0; i < pairs_.size(); ++i) {
    index().Add(HashKey(pairs_[i].key, holds_object_keys()), i);
  }
}
