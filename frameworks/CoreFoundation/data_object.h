// Data as it is kept: the bytes lie right behind the object.
#pragma once

#include <CoreFoundation/CFData.h>

#include "frameworks/CoreFoundation/object.h"

struct __CFData final : CFObject {
 public:
  // For readers: the caller fills `bytes()` before anyone else sees the object.
  static __CFData* MakeUnfilled(std::size_t length, ObjectBlocks* blocks = nullptr);

  std::size_t length() const { return length_; }
  UInt8 const* bytes() const { return reinterpret_cast<UInt8 const*>(this + 1); }
  UInt8* bytes() { return reinterpret_cast<UInt8*>(this + 1); }

  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  // For `CFObject::Make` alone.
  explicit __CFData(std::size_t length) noexcept : CFObject(kCFTypeData), length_(length) {}

 private:
  std::size_t length_;
};
