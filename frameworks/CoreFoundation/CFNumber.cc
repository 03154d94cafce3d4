#include <CoreFoundation/CFNumber.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/number_object.h"

namespace {

constinit CFConstant<__CFBoolean> const yes(true);
constinit CFConstant<__CFBoolean> const no(false);

constexpr double kTwoTo63 = 0x1p63, kTwoTo64 = 0x1p64;

// The first six types stand for all.
CFNumberType Canonical(CFNumberType type) {
  switch (type) {
    case kCFNumberCharType:
      return kCFNumberSInt8Type;
    case kCFNumberShortType:
      return kCFNumberSInt16Type;
    case kCFNumberIntType:
    case kCFNumberLongType:
      return kCFNumberSInt32Type;
    case kCFNumberLongLongType:
    case kCFNumberCFIndexType:
    case kCFNumberNSIntegerType:
      return kCFNumberSInt64Type;
    case kCFNumberFloatType:
      return kCFNumberFloat32Type;
    case kCFNumberDoubleType:
    case kCFNumberCGFloatType:
      return kCFNumberFloat64Type;
    default:
      return type;
  }
}

template <typename Value>
Value Load(void const* from) {
  Value value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename Value>
void Store(void* to, Value value) {
  std::memcpy(to, &value, sizeof value);
}

CFNumberRef MakeFrom128(CFSInt128Struct value) {
  if (value.high == 0) return __CFNumber::MakeUnsigned(value.low);
  auto const low = static_cast<SInt64>(value.low);
  return value.high == -1 && low < 0 ? __CFNumber::MakeSigned(low) : nullptr;
}

// Cut towards zero and to the 64 bits; what that loses shows when the result is compared again.
SInt64 Cut(double value) {
  if (std::isnan(value)) return 0;
  if (value >= kTwoTo63) return std::numeric_limits<SInt64>::max();
  if (value < -kTwoTo63) return std::numeric_limits<SInt64>::min();
  return static_cast<SInt64>(value);
}

template <typename Integer>
bool StoreInteger(__CFNumber const& number, void* to) {
  SInt64 value = number.is_real()       ? Cut(number.as_real())
                 : number.is_unsigned() ? std::numeric_limits<SInt64>::max()
                                        : number.as_signed();
  bool is_exact = !number.is_unsigned();
  if (number.is_real()) {
    double const real = number.as_real();
    is_exact = real == std::trunc(real) && real >= -kTwoTo63 && real < kTwoTo63;
  }
  using Limits = std::numeric_limits<Integer>;
  if (!std::in_range<Integer>(value)) {
    is_exact = false;
    value = value < 0 ? Limits::min() : Limits::max();
  }
  Store(to, static_cast<Integer>(value));
  return is_exact;
}

bool Store128(__CFNumber const& number, void* to) {
  if (number.is_unsigned()) {
    Store(to, CFSInt128Struct{0, number.as_unsigned()});
    return true;
  }
  if (number.is_real() && number.as_real() >= kTwoTo63) {
    bool const fits = number.as_real() < kTwoTo64;
    Store(to, CFSInt128Struct{0, fits ? static_cast<UInt64>(number.as_real())
                                      : std::numeric_limits<UInt64>::max()});
    return fits;
  }
  SInt64 value = 0;
  bool const is_exact = StoreInteger<SInt64>(number, &value);
  Store(to, CFSInt128Struct{value < 0 ? -1 : 0, static_cast<UInt64>(value)});
  return is_exact;
}

// Exact for every number: its 64 bits of mantissa (at least) hold the integers as well.
long double Exactly(__CFNumber const& number) {
  static_assert(std::numeric_limits<long double>::digits >= 64);
  if (number.is_real()) return number.as_real();
  if (number.is_unsigned()) return static_cast<long double>(number.as_unsigned());
  return static_cast<long double>(number.as_signed());
}

template <typename Real>
bool StoreReal(__CFNumber const& number, void* to) {
  long double const value = Exactly(number);
  auto const real = static_cast<Real>(value);
  Store(to, real);
  return std::isnan(value) || static_cast<long double>(real) == value;
}

}  // namespace

constinit CFBooleanRef const kCFBooleanTrue = &yes.object;
constinit CFBooleanRef const kCFBooleanFalse = &no.object;

CFTypeID CFBooleanGetTypeID() { return kCFTypeBoolean; }

Boolean CFBooleanGetValue(CFBooleanRef boolean) { return boolean->variant() != 0; }

CFNumberRef __CFNumber::MakeUnsigned(UInt64 value, ObjectBlocks* blocks) {
  bool const is_signed = std::in_range<SInt64>(value);
  return CFObject::MakeIn<__CFNumber>(blocks, 0,
                                      is_signed ? kCFNumberSInt64Type : kCFNumberSInt128Type,
                                      Value{.as_unsigned = value});
}

bool __CFNumber::EqualTo(CFObject const& other) const {
  return CFNumberCompare(this, static_cast<__CFNumber const*>(&other), nullptr) ==
         kCFCompareEqualTo;
}

// A real with the value of an integer has its hash.
CFHashCode __CFNumber::Hash() const {
  if (!is_real()) return HashWord(as_unsigned());
  double const real = as_real();
  if (real >= kTwoTo63 && real < kTwoTo64) return HashWord(static_cast<UInt64>(real));
  auto const cut = Cut(real);
  if (static_cast<double>(cut) == real) return HashWord(static_cast<UInt64>(cut));
  return std::isnan(real) ? 0 : HashWord(std::bit_cast<UInt64>(real));
}

CFTypeID CFNumberGetTypeID() { return kCFTypeNumber; }

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType theType, void const* valuePtr) {
  if (valuePtr == nullptr) return nullptr;
  CFNumberType const type = Canonical(theType);
  switch (type) {
    case kCFNumberSInt8Type:
      return __CFNumber::MakeSigned(Load<SInt8>(valuePtr), type);
    case kCFNumberSInt16Type:
      return __CFNumber::MakeSigned(Load<SInt16>(valuePtr), type);
    case kCFNumberSInt32Type:
      return __CFNumber::MakeSigned(Load<SInt32>(valuePtr), type);
    case kCFNumberSInt64Type:
      return __CFNumber::MakeSigned(Load<SInt64>(valuePtr), type);
    case kCFNumberFloat32Type:
      return __CFNumber::MakeReal(Load<float>(valuePtr), type);
    case kCFNumberFloat64Type:
      return __CFNumber::MakeReal(Load<double>(valuePtr), type);
    case kCFNumberSInt128Type:
      return MakeFrom128(Load<CFSInt128Struct>(valuePtr));
    default:
      return nullptr;
  }
}

CFNumberType CFNumberGetType(CFNumberRef number) { return number->kind(); }

CFIndex CFNumberGetByteSize(CFNumberRef number) {
  switch (number->kind()) {
    case kCFNumberSInt8Type:
      return 1;
    case kCFNumberSInt16Type:
      return 2;
    case kCFNumberSInt32Type:
    case kCFNumberFloat32Type:
      return 4;
    case kCFNumberSInt128Type:
      return 16;
    default:
      return 8;
  }
}

Boolean CFNumberIsFloatType(CFNumberRef number) { return number->is_real(); }

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr) {
  switch (Canonical(theType)) {
    case kCFNumberSInt8Type:
      return StoreInteger<SInt8>(*number, valuePtr);
    case kCFNumberSInt16Type:
      return StoreInteger<SInt16>(*number, valuePtr);
    case kCFNumberSInt32Type:
      return StoreInteger<SInt32>(*number, valuePtr);
    case kCFNumberSInt64Type:
      return StoreInteger<SInt64>(*number, valuePtr);
    case kCFNumberFloat32Type:
      return StoreReal<float>(*number, valuePtr);
    case kCFNumberFloat64Type:
      return StoreReal<double>(*number, valuePtr);
    case kCFNumberSInt128Type:
      return Store128(*number, valuePtr);
    default:
      return false;
  }
}

CFComparisonResult CFNumberCompare(CFNumberRef number, CFNumberRef otherNumber, void*) {
  long double const left = Exactly(*number), right = Exactly(*otherNumber);
  if (std::isnan(left) || std::isnan(right)) {
    return static_cast<CFComparisonResult>(std::isnan(right) - std::isnan(left));
  }
  if (left == right) return kCFCompareEqualTo;
  return left < right ? kCFCompareLessThan : kCFCompareGreaterThan;
}
