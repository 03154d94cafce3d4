// A dictionary as it is kept: keys, values, and where there are more than a few pairs a hash table
// of their places. An immutable one has all three right behind itself.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <span>
#include <vector>

#include "frameworks/CoreFoundation/object.h"
#include "frameworks/CoreFoundation/place_index.h"

struct __CFDictionary : CFObject {
 public:
  static constexpr UInt8 kMutable = 1, kObjectKeys = 2, kObjectValues = 4;

  // For readers: a dictionary of objects with room for `capacity` pairs, none there yet. The caller
  // gives a reference to each key and value by `TakeKey` and `TakeValue` at the same place, all
  // places from 0 up, and then calls `Settle`, before anyone else sees the dictionary. Released
  // half filled it gives back what it has.
  static __CFDictionary* MakeUnfilled(std::size_t capacity,
                                      UInt8 variant = kObjectKeys | kObjectValues);
  void TakeKey(std::size_t place, CFTypeRef key) { Inline()[place] = key; }
  void TakeValue(std::size_t place, CFTypeRef value) { Inline()[count_ + place] = value; }
  enum class Keep { kFirst, kLast };
  // Of pairs with equal keys one is kept; the others are added to `dropped`, with their references,
  // or released when it is null.
  void Settle(Keep keep, std::vector<CFTypeRef>* dropped = nullptr);

  // Takes over the caller's reference to each object: key, value, key, value, ...
  static CFDictionaryRef MakeTaking(std::span<CFTypeRef const> keys_and_values, Keep keep);

  std::size_t count() const;
  void const* const* keys() const;
  void const* const* values() const;
  // The place of a key, or `kCFNotFound`.
  CFIndex Find(void const* key) const;

  bool is_mutable() const { return (variant() & kMutable) != 0; }
  bool holds_object_keys() const { return (variant() & kObjectKeys) != 0; }
  bool holds_object_values() const { return (variant() & kObjectValues) != 0; }

  ~__CFDictionary() override;
  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  // For `CFObject::Make` alone.
  __CFDictionary(UInt8 variant, std::size_t count)
      : CFObject(kCFTypeDictionary, variant), count_(count) {}

 private:
  void const** Inline() { return reinterpret_cast<void const**>(this + 1); }
  void const* const* Inline() const { return reinterpret_cast<void const* const*>(this + 1); }
  PlaceIndex InlineIndex() const;
  // Moves the pairs together that `Settle` kept, `kept` of them.
  void Shrink(std::size_t kept);

  std::size_t count_;  // Of an immutable dictionary.
};

struct MutableDictionary final : __CFDictionary {
 public:
  explicit MutableDictionary(UInt8 variant) : __CFDictionary(variant | kMutable, 0) {}
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

  std::vector<void const*> keys_, values_;
  std::size_t capacity_ = 0;  // Pairs that the index was made for.
  std::vector<UInt8> slots_;
};
