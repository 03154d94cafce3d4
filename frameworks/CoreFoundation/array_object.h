// An array as it is kept: an immutable one has its values right behind itself.
#pragma once

#include <CoreFoundation/CFArray.h>

#include <span>
#include <vector>

#include "frameworks/CoreFoundation/object.h"

struct __CFArray : CFObject {
 public:
  // For readers: an array of objects with room for `capacity` of them, to be given by `Take` before
  // anyone else sees the array.
  static __CFArray* MakeUnfilled(std::size_t capacity, ObjectBlocks* blocks = nullptr);
  // Takes over one reference. At most `capacity` times.
  void Take(CFTypeRef object) { Inline()[count_++] = object; }

  // Takes over the caller's reference to each object.
  static CFArrayRef MakeTaking(std::span<CFTypeRef const> objects, ObjectBlocks* blocks = nullptr);
  // An array of the `count` objects that lie `sizeof(__CFArray)` behind the start of the memory,
  // which is from `malloc`. Takes over both.
  static CFArrayRef MakeInMalloced(void* memory, std::size_t count);

  std::span<void const* const> values() const;
  bool is_mutable() const { return (variant() & kMutable) != 0; }
  bool holds_objects() const { return (variant() & kObjects) != 0; }

  ~__CFArray() override;
  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  static constexpr UInt8 kMutable = 1, kObjects = 2;
  // For `CFObject::Make` alone.
  explicit __CFArray(UInt8 variant, std::size_t count = 0) noexcept
      : CFObject(kCFTypeArray, variant), count_(count) {}

 private:
  void const** Inline() { return reinterpret_cast<void const**>(this + 1); }

  std::size_t count_;  // Of an immutable array.
};

struct MutableArray final : __CFArray {
  explicit MutableArray(UInt8 variant) : __CFArray(variant | kMutable) {}
  ~MutableArray() override;
  std::vector<void const*> storage;
};
