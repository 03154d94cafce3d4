#include "frameworks/CoreFoundation/property_list_builder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "frameworks/CoreFoundation/CFPropertyList.h"
#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/dictionary_object.h"

namespace {

// Longer strings are seldom equal.
constexpr std::size_t kLongestShared = 40;

std::uint64_t WordAt(char const* bytes, std::size_t size) {
  std::uint64_t word = 0;
  if (size > 0) std::memcpy(&word, bytes, size);
  return word;
}

// A slot among 1024, from the first and last bytes and the length.
std::size_t SlotOf(std::string_view text) {
  std::size_t const size = text.size() < 8 ? text.size() : 8;
  std::uint64_t hash = WordAt(text.data(), size);
  hash = (hash ^ text.size()) * 0x9E3779B97F4A7C15u;
  hash ^= hash >> 29;
  hash = (hash ^ WordAt(text.data() + text.size() - size, size)) * 0x9E3779B97F4A7C15u;
  return hash >> 54;
}

}  // namespace

void PropertyListBuilder::Freer::operator()(void* memory) const { std::free(memory); }

PropertyListBuilder::PropertyListBuilder(CFOptionFlags options)
    : is_mutable_(options != kCFPropertyListImmutable) {}

PropertyListBuilder::~PropertyListBuilder() {
  for (CFTypeRef const value : From(0)) CFRelease(value);
  for (CFStringRef const string : recent_) {
    if (string != nullptr) CFRelease(string);
  }
  if (empty_array_ != nullptr) CFRelease(empty_array_);
  if (empty_dictionary_ != nullptr) CFRelease(empty_dictionary_);
}

void PropertyListBuilder::Add(CFTypeRef value) {
  if (count_ == capacity_) {
    std::size_t const capacity = capacity_ == 0 ? 64 : 2 * capacity_;
    void* const memory = std::realloc(values_.get(), capacity * sizeof(CFTypeRef));
    if (memory == nullptr) {
      CFRelease(value);
      throw std::bad_alloc();
    }
    static_cast<void>(values_.release());
    values_.reset(static_cast<CFTypeRef*>(memory));
    capacity_ = capacity;
  }
  values_[count_++] = value;
}

void PropertyListBuilder::AddAscii(std::string_view text) {
  auto const* const bytes = reinterpret_cast<UInt8 const*>(text.data());
  if (text.size() > kLongestShared) return Add(__CFString::MakeAscii(bytes, text.size()));
  CFStringRef& recent = recent_[SlotOf(text)];
  if (recent == nullptr || recent->ascii_text() != text) {
    if (recent != nullptr) CFRelease(recent);
    recent = nullptr;
    recent = __CFString::MakeAscii(bytes, text.size());
  }
  recent->RetainUnshared();
  Add(recent);
}

void PropertyListBuilder::ReplaceFrom(std::size_t first, CFTypeRef container) {
  count_ = first;
  Add(container);
}

// An empty container takes many times the eight bytes that it needs in the text: there is only one.
void PropertyListBuilder::MakeArray(std::size_t first) {
  if (is_mutable_) return MakeMutableArray(first);
  if (first < count_) return ReplaceFrom(first, __CFArray::MakeTaking(From(first)));
  if (empty_array_ == nullptr) empty_array_ = __CFArray::MakeTaking({});
  CFObject::Of(empty_array_).RetainUnshared();
  Add(empty_array_);
}

void PropertyListBuilder::MakeDictionary(std::size_t first) {
  using Keep = __CFDictionary::Keep;
  if (is_mutable_) return MakeMutableDictionary(first);
  if (first < count_) {
    return ReplaceFrom(first, __CFDictionary::MakeTaking(From(first), Keep::kLast));
  }
  if (empty_dictionary_ == nullptr) {
    empty_dictionary_ = __CFDictionary::MakeTaking({}, Keep::kLast);
  }
  CFObject::Of(empty_dictionary_).RetainUnshared();
  Add(empty_dictionary_);
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
    CFDictionarySetValue(dictionary, values_[at], values_[at + 1]);
    CFRelease(values_[at]);
    CFRelease(values_[at + 1]);
  }
  ReplaceFrom(first, dictionary);
}

CFTypeRef PropertyListBuilder::TakeRoot() { return values_[--count_]; }
