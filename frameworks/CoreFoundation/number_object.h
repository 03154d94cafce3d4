// Numbers, booleans and dates as they are kept: a word each behind the head.
#pragma once

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "frameworks/CoreFoundation/object.h"

struct __CFNumber final : CFObject {
 public:
  static CFNumberRef MakeSigned(SInt64 value, CFNumberType type = kCFNumberSInt64Type,
                                ObjectBlocks* blocks = nullptr) {
    return CFObject::MakeIn<__CFNumber>(blocks, 0, type, Value{.as_signed = value});
  }
  // As signed where it fits.
  static CFNumberRef MakeUnsigned(UInt64 value, ObjectBlocks* blocks = nullptr);
  static CFNumberRef MakeReal(double value, CFNumberType type = kCFNumberFloat64Type,
                              ObjectBlocks* blocks = nullptr) {
    return CFObject::MakeIn<__CFNumber>(blocks, 0, type, Value{.as_real = value});
  }

  // One of the first six, or `kCFNumberSInt128Type` for what only `as_unsigned` can tell.
  CFNumberType kind() const { return static_cast<CFNumberType>(variant()); }
  bool is_real() const { return kind() == kCFNumberFloat32Type || kind() == kCFNumberFloat64Type; }
  bool is_unsigned() const { return kind() == kCFNumberSInt128Type; }
  SInt64 as_signed() const { return value_.as_signed; }
  UInt64 as_unsigned() const { return value_.as_unsigned; }
  double as_real() const { return value_.as_real; }

  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  union Value {
    SInt64 as_signed;
    UInt64 as_unsigned;
    double as_real;
  };
  // For `CFObject::Make` alone.
  __CFNumber(CFNumberType kind, Value value) noexcept
      : CFObject(kCFTypeNumber, static_cast<UInt8>(kind)), value_(value) {}

 private:
  Value value_;
};

struct __CFBoolean final : CFObject {
  explicit constexpr __CFBoolean(bool value) : CFObject(Constant(), kCFTypeBoolean, value) {}
};

struct __CFDate final : CFObject {
 public:
  CFAbsoluteTime time() const { return time_; }
  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;

  // For `CFObject::Make` alone.
  explicit __CFDate(CFAbsoluteTime time) noexcept : CFObject(kCFTypeDate), time_(time) {}

 private:
  CFAbsoluteTime time_;
};
