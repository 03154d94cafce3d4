#include <CoreFoundation/CFArray.h>

#include <algorithm>

#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/container_equality.h"
#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/pages.h"

__CFArray* __CFArray::MakeUnfilled(std::size_t capacity, ObjectBlocks* blocks) {
  std::size_t const room = capacity * sizeof(void*);
  auto* const array = CFObject::MakeIn<__CFArray>(blocks, room, kObjects);
  FetchPages(array->Inline(), room);
  return array;
}

CFArrayRef __CFArray::MakeTaking(std::span<CFTypeRef const> objects, ObjectBlocks* blocks) {
  __CFArray* const array = MakeUnfilled(objects.size(), blocks);
  for (CFTypeRef const object : objects) array->Take(object);
  return array;
}

CFArrayRef __CFArray::MakeInMalloced(void* memory, std::size_t count) {
  return CFObject::MakeInMalloced<__CFArray>(memory, kObjects, count);
}

std::span<void const* const> __CFArray::values() const {
  if (is_mutable()) return static_cast<MutableArray const*>(this)->storage;
  return {reinterpret_cast<void const* const*>(this + 1), count_};
}

__CFArray::~__CFArray() {
  if (is_mutable() || !holds_objects()) return;
  for (void const* const value : values()) ReleaseValue(value, true);
}

MutableArray::~MutableArray() {
  for (void const* const value : storage) ReleaseValue(value, holds_objects());
}

bool __CFArray::EqualTo(CFObject const& other) const { return AreEqualContainers(*this, other); }

CFHashCode __CFArray::Hash() const { return HashWord(values().size()); }

namespace {

// What we know is told by address; the functions are there for callers alone.
bool IsKnown(CFArrayCallBacks const* call_backs) {
  return call_backs == nullptr || call_backs == &kCFTypeArrayCallBacks;
}

UInt8 VariantFor(CFArrayCallBacks const* call_backs) {
  return call_backs == nullptr ? 0 : __CFArray::kObjects;
}

__CFArray* MakeFrom(std::span<void const* const> values, UInt8 variant) {
  auto* const array = CFObject::MakeWithRoom<__CFArray>(values.size_bytes(), variant);
  for (void const* const value : values) {
    RetainValue(value, array->holds_objects());
    array->Take(value);
  }
  return array;
}

// The part of the array that the range means, none when the range does not lie inside.
std::span<void const* const> Part(__CFArray const& array, CFRange range) {
  auto const values = array.values();
  auto const count = static_cast<CFIndex>(values.size());
  bool const is_inside = range.location >= 0 && range.length >= 0 && range.location <= count &&
                         range.length <= count - range.location;
  if (!is_inside) return {};
  return values.subspan(static_cast<std::size_t>(range.location),
                        static_cast<std::size_t>(range.length));
}

// Null for an immutable array and for an index outside `0 .. end`.
MutableArray* MutableAt(CFMutableArrayRef array, CFIndex index, std::size_t end) {
  if (!array->is_mutable() || index < 0 || static_cast<std::size_t>(index) >= end) return nullptr;
  return static_cast<MutableArray*>(array);
}

}  // namespace

CFArrayCallBacks const kCFTypeArrayCallBacks = {
    0, [](CFAllocatorRef, void const* value) { return CFRetain(value); },
    [](CFAllocatorRef, void const* value) { CFRelease(value); }, nullptr, CFEqual};

CFTypeID CFArrayGetTypeID() { return kCFTypeArray; }

CFArrayRef CFArrayCreate(CFAllocatorRef, void const** values, CFIndex numValues,
                         CFArrayCallBacks const* callBacks) {
  if (numValues < 0 || !IsKnown(callBacks)) return nullptr;
  return MakeFrom({values, static_cast<std::size_t>(numValues)}, VariantFor(callBacks));
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef, CFArrayRef theArray) {
  if (theArray->is_mutable()) {
    return MakeFrom(theArray->values(), theArray->variant() & ~__CFArray::kMutable);
  }
  theArray->Retain();
  return theArray;
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef, CFIndex, CFArrayCallBacks const* callBacks) {
  if (!IsKnown(callBacks)) return nullptr;
  return CFObject::Make<MutableArray>(VariantFor(callBacks));
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef, CFIndex, CFArrayRef theArray) {
  auto* const array = CFObject::Make<MutableArray>(theArray->variant());
  CFArrayAppendArray(array, theArray, CFRangeMake(0, CFArrayGetCount(theArray)));
  return array;
}

CFIndex CFArrayGetCount(CFArrayRef theArray) {
  return static_cast<CFIndex>(theArray->values().size());
}

void const* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx) {
  auto const values = theArray->values();
  if (idx < 0 || static_cast<std::size_t>(idx) >= values.size()) return nullptr;
  return values[static_cast<std::size_t>(idx)];
}

void CFArrayGetValues(CFArrayRef theArray, CFRange range, void const** values) {
  std::ranges::copy(Part(*theArray, range), values);
}

CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef theArray, CFRange range, void const* value) {
  auto const part = Part(*theArray, range);
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (AreEqualValues(part[i], value, theArray->holds_objects())) {
      return range.location + static_cast<CFIndex>(i);
    }
  }
  return kCFNotFound;
}

Boolean CFArrayContainsValue(CFArrayRef theArray, CFRange range, void const* value) {
  return CFArrayGetFirstIndexOfValue(theArray, range, value) != kCFNotFound;
}

void CFArrayAppendValue(CFMutableArrayRef theArray, void const* value) {
  CFArrayInsertValueAtIndex(theArray, CFArrayGetCount(theArray), value);
}

void CFArrayAppendArray(CFMutableArrayRef theArray, CFArrayRef otherArray, CFRange otherRange) {
  // A copy, since an array may be appended to itself.
  auto const part = Part(*otherArray, otherRange);
  for (void const* const value : std::vector<void const*>(part.begin(), part.end())) {
    CFArrayAppendValue(theArray, value);
  }
}

void CFArrayInsertValueAtIndex(CFMutableArrayRef theArray, CFIndex idx, void const* value) {
  MutableArray* const array = MutableAt(theArray, idx, theArray->values().size() + 1);
  if (array == nullptr) return;
  array->storage.insert(array->storage.begin() + idx, value);
  RetainValue(value, array->holds_objects());
}

void CFArraySetValueAtIndex(CFMutableArrayRef theArray, CFIndex idx, void const* value) {
  if (idx == CFArrayGetCount(theArray)) return CFArrayAppendValue(theArray, value);
  MutableArray* const array = MutableAt(theArray, idx, theArray->values().size());
  if (array == nullptr) return;
  RetainValue(value, array->holds_objects());
  void const* const old = std::exchange(array->storage[static_cast<std::size_t>(idx)], value);
  ReleaseValue(old, array->holds_objects());
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef theArray, CFIndex idx) {
  MutableArray* const array = MutableAt(theArray, idx, theArray->values().size());
  if (array == nullptr) return;
  void const* const old = array->storage[static_cast<std::size_t>(idx)];
  array->storage.erase(array->storage.begin() + idx);
  ReleaseValue(old, array->holds_objects());
}

void CFArrayRemoveAllValues(CFMutableArrayRef theArray) {
  if (!theArray->is_mutable()) return;
  auto const old = std::exchange(static_cast<MutableArray*>(theArray)->storage, {});
  for (void const* const value : old) ReleaseValue(value, theArray->holds_objects());
}
