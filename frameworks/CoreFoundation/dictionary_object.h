// A dictionary as it is kept: pairs, and where there are more than a few of them a hash table of
// their places. An immutable one has both right behind itself.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <span>
#include <vector>

#include "frameworks/CoreFoundation/object.h"
#include "frameworks/CoreFoundation/place_index.h"

struct __CFDictionary : CFObject {
 public:
  static constexpr UInt8 kMutable = 1, kObjectKeys = 2, kObjectValues = 4;
  static constexpr UInt8 kObjects = kObjectKeys | kObjectValues;

  struct Pair {
    void const* key;
    void const* value;
  };

  // For readers: a dictionary with room for `capacity` pairs, none there yet. The caller gives a
  // reference to each key by `TakeKey` and then to each value by `TakeValue`, at the places from 0
  // up, and then calls `Settle`, before anyone else sees the dictionary. Released half filled it
  // gives back what it has.
  static __CFDictionary* MakeUnfilled(std::size_t capacity, UInt8 variant = kObjects,
                                      ObjectBlocks* blocks = nullptr);
  void TakeKey(void const* key) { Inline()[count_++] = {key, nullptr}; }
  void TakeValue(std::size_t place, void const* value) { Inline()[place].value = value; }
  enum class Keep { kFirst, kLast };
  // Of pairs with equal keys one is kept; the others are added to `dropped`, with their references,
  // or released when it is null.
  void Settle(Keep keep, std::vector<CFTypeRef>* dropped = nullptr);

  // Takes over the caller's reference to each object: key, value, key, value, ...
  static CFDictionaryRef MakeTaking(std::span<CFTypeRef const> keys_and_values, Keep keep,
                                    ObjectBlocks* blocks = nullptr);
  // A dictionary of the `count` pairs that lie `sizeof(__CFDictionary)` behind the start of the
  // memory, which is from `malloc` and has room for `BytesFor(count)`. Takes over all.
  static CFDictionaryRef MakeInMalloced(void* memory, std::size_t count, Keep keep);
  static std::size_t BytesFor(std::size_t count) {
    return sizeof(__CFDictionary) + count * sizeof(Pair) + PlaceIndex::BytesFor(count);
  }

  std::span<Pair const> pairs() const;
  // The place of a key, or `kCFNotFound`.
  CFIndex Find(void const* key) const;

  bool is_mutable() const { return (variant() & kMutable) != 0; }
  bool holds_object_keys() const { return (variant() & kObjectKeys) != 0; }
  bool holds_object_values() const { return (variant() & kObjectValues) != 0; }

  ~__CFDictionary() override;
  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  // For `CFObject::Make` alone.
  explicit __CFDictionary(UInt8 variant, std::size_t count = 0) noexcept
      : CFObject(kCFTypeDictionary, variant), count_(count) {}

 private:
  Pair* Inline() { return reinterpret_cast<Pair*>(this + 1); }
  Pair const* Inline() const { return reinterpret_cast<Pair const*>(this + 1); }
  PlaceIndex InlineIndex() const;
  // Makes the index anew for the pairs that `Settle` kept, `kept` of them.
  void Shrink(std::size_t kept);

  std::size_t count_;  // Of an immutable dictionary.
};

struct MutableDictionary final : __CFDictionary {
 public:
  explicit MutableDictionary(UInt8 variant) : __CFDictionary(variant | kMutable) {}
  ~MutableDictionary() override;

  // The key must be absent, or the place inside, respectively.
  void Add(void const* key, void const* value);
  void Replace(std::size_t place, void const* value);
  void Remove(std::size_t place);
  void Clear();

 private:
  friend struct __CFDictionary;
  void Reindex(std::size_t capacity);
  PlaceIndex index() const { return {const_cast<UInt8*>(slots_.data()), capacity_}; }

  std::vector<Pair> pairs_;
  std::size_t capacity_ = 0;  // Pairs that the index was made for.
  std::vector<UInt8> slots_;
};
