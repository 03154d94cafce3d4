#include "frameworks/CoreFoundation/property_list_builder.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "frameworks/CoreFoundation/CFPropertyList.h"
#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/data_object.h"
#include "frameworks/CoreFoundation/dictionary_object.h"
#include "frameworks/CoreFoundation/hash.h"

namespace {

// Longer strings are seldom equal.
constexpr std::size_t kLongestShared = 40;

// Values of a container from which on its memory counts.
constexpr std::size_t kMany = 32'768;

}  // namespace

void PropertyListBuilder::Freer::operator()(void* memory) const { std::free(memory); }

PropertyListBuilder::PropertyListBuilder(CFOptionFlags options, std::size_t text_size)
    : memory_(Resize({}, BytesFor(kFirstCapacity))),
      capacity_(kFirstCapacity),
      is_mutable_(options != kCFPropertyListImmutable),
      strings_(std::bit_ceil(std::clamp<std::size_t>(text_size / 32, 16, 1024))),
      numbers_(strings_.size() / 4) {}

PropertyListBuilder::~PropertyListBuilder() {
  auto const release = [](CFTypeRef object) {
    if (object != nullptr) CFRelease(object);
  };
  for (CFTypeRef const value : From(0)) release(value);
  for (CFStringRef const string : strings_) release(string);
  for (CFNumberRef const number : numbers_) release(number);
  for (CFTypeRef const empty : {empty_array_, empty_dictionary_, empty_data_}) release(empty);
}

PropertyListBuilder::Memory PropertyListBuilder::Resize(Memory&& memory, std::size_t bytes) {
  void* const resized = std::realloc(memory.get(), bytes);
  if (resized == nullptr) throw std::bad_alloc();
  static_cast<void>(memory.release());
  return Memory(static_cast<CFTypeRef*>(resized));
}

void PropertyListBuilder::MakeRoomFor(CFTypeRef value) try {
  memory_ = Resize(std::move(memory_), BytesFor(2 * capacity_));
  capacity_ *= 2;
} catch (std::bad_alloc const&) {
  CFRelease(value);
  throw;
}

void PropertyListBuilder::AddAscii(std::string_view text) {
  auto const* const bytes = reinterpret_cast<UInt8 const*>(text.data());
  if (text.size() > kLongestShared) return Add(__CFString::MakeAscii(bytes, text.size(), &blocks_));
  CFStringRef& recent = strings_[HashBytes(bytes, text.size()) & (strings_.size() - 1)];
  if (recent == nullptr || recent->ascii_text() != text) {
    if (recent != nullptr) std::exchange(recent, nullptr)->ReleaseUnshared();
    recent = __CFString::MakeAscii(bytes, text.size(), &blocks_);
  }
  recent->RetainUnshared();
  Add(recent);
}

void PropertyListBuilder::AddNumber(CFNumberType kind, __CFNumber::Value value) {
  CFNumberRef& recent = numbers_[HashWord(value.as_unsigned) & (numbers_.size() - 1)];
  if (recent == nullptr || recent->kind() != kind || recent->as_unsigned() != value.as_unsigned) {
    if (recent != nullptr) std::exchange(recent, nullptr)->ReleaseUnshared();
    recent = CFObject::MakeIn<__CFNumber>(&blocks_, 0, kind, value);
  }
  recent->RetainUnshared();
  Add(recent);
}

void PropertyListBuilder::AddInteger(UInt64 magnitude, bool is_negative) {
  UInt64 const value = is_negative ? 0 - magnitude : magnitude;
  bool const is_large = !is_negative && magnitude >> 63 != 0;
  AddNumber(is_large ? kCFNumberSInt128Type : kCFNumberSInt64Type, {.as_unsigned = value});
}

void PropertyListBuilder::AddReal(double value) {
  AddNumber(kCFNumberFloat64Type, {.as_real = value});
}

void PropertyListBuilder::AddDate(CFAbsoluteTime time) {
  Add(CFObject::MakeIn<__CFDate>(&blocks_, 0, time));
}

template <typename Make>
void PropertyListBuilder::AddEmpty(CFTypeRef& empty, Make&& make) {
  if (empty == nullptr) empty = make();
  CFObject::Of(empty).RetainUnshared();
  Add(empty);
}

void PropertyListBuilder::AddData(std::span<UInt8 const> bytes) {
  if (bytes.empty()) return AddEmpty(empty_data_, [] { return __CFData::MakeUnfilled(0); });
  __CFData* const data = __CFData::MakeUnfilled(bytes.size(), &blocks_);
  std::memcpy(data->bytes(), bytes.data(), bytes.size());
  Add(data);
}

void PropertyListBuilder::ReplaceFrom(std::size_t first, CFTypeRef container) {
  count_ = first;
  Add(container);
}

// Those below are copied, so they must not be many more.
bool PropertyListBuilder::IsWorthHandingOver(std::size_t first) const {
  return count_ - first >= kMany && count_ - first >= first;
}

void* PropertyListBuilder::HandOver(std::size_t first, std::size_t bytes) {
  static_assert(sizeof(__CFArray) == kWordsBefore * sizeof(CFTypeRef));
  static_assert(sizeof(__CFDictionary) == kWordsBefore * sizeof(CFTypeRef));
  std::size_t const rest_capacity = first + kFirstCapacity;
  Memory rest = Resize({}, BytesFor(rest_capacity));
  CFTypeRef* const values = Values();
  std::copy(values, values + first, rest.get() + kWordsBefore);
  std::copy(values + first, values + count_, values);
  count_ = first;
  capacity_ = rest_capacity;
  return Resize(std::exchange(memory_, std::move(rest)), bytes).release();
}

void PropertyListBuilder::MakeArray(std::size_t first) {
  if (is_mutable_) return MakeMutableArray(first);
  if (first == count_) {
    return AddEmpty(empty_array_, [] { return __CFArray::MakeTaking({}); });
  }
  if (!IsWorthHandingOver(first)) {
    return ReplaceFrom(first, __CFArray::MakeTaking(From(first), &blocks_));
  }
  std::size_t const count = count_ - first;
  Add(__CFArray::MakeInMalloced(HandOver(first, sizeof(__CFArray) + count * sizeof(CFTypeRef)),
                                count));
}

void PropertyListBuilder::MakeDictionary(std::size_t first) {
  constexpr auto kKeep = __CFDictionary::Keep::kLast;
  if (is_mutable_) return MakeMutableDictionary(first);
  if (first == count_) {
    return AddEmpty(empty_dictionary_, [] { return __CFDictionary::MakeTaking({}, kKeep); });
  }
  if (!IsWorthHandingOver(first)) {
    return ReplaceFrom(first, __CFDictionary::MakeTaking(From(first), kKeep, &blocks_));
  }
  std::size_t const count = (count_ - first) / 2;
  Add(__CFDictionary::MakeInMalloced(HandOver(first, __CFDictionary::BytesFor(count)), count,
                                     kKeep));
}

void PropertyListBuilder::MakeMutableArray(std::size_t first) {
  CFMutableArrayRef const array =
      CFArrayCreateMutable(nullptr, static_cast<CFIndex>(count_ - first), &kCFTypeArrayCallBacks);
  for (CFTypeRef const value : From(first)) {
    CFArrayAppendValue(array, value);
    CFRelease(value);
  }
  ReplaceFrom(first, array);
}

void PropertyListBuilder::MakeMutableDictionary(std::size_t first) {
  CFMutableDictionaryRef const dictionary =
      CFDictionaryCreateMutable(nullptr, static_cast<CFIndex>((count_ - first) / 2),
                                &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  for (std::size_t at = first; at < count_; at += 2) {
    CFDictionarySetValue(dictionary, Values()[at], Values()[at + 1]);
    CFRelease(Values()[at]);
    CFRelease(Values()[at + 1]);
  }
  ReplaceFrom(first, dictionary);
}

CFTypeRef PropertyListBuilder::TakeRoot() { return Values()[--count_]; }
