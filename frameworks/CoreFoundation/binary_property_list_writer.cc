#include <algorithm>
#include <bit>
#include <string>
#include <unordered_map>
#include <utility>

#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/binary_property_list.h"
#include "frameworks/CoreFoundation/binary_property_list_form.h"
#include "frameworks/CoreFoundation/data_object.h"
#include "frameworks/CoreFoundation/dictionary_object.h"
#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/number_object.h"
#include "frameworks/CoreFoundation/string_object.h"

using namespace binary_property_list;

namespace {

// All keys of a dictionary come before its values.
constexpr void const* __CFDictionary::Pair::*kPartsInOrder[] = {&__CFDictionary::Pair::key,
                                                                &__CFDictionary::Pair::value};

bool IsContainer(CFObject const& object) {
  return object.type() == kCFTypeArray || object.type() == kCFTypeDictionary;
}

// Objects that are written as one: those that read alike. 1 and 1.0 are equal but do not, and a
// container is only itself, since to compare them all would take too long.
struct HashWritten {
  std::size_t operator()(CFTypeRef reference) const {
    if (IsContainer(CFObject::Of(reference))) return HashWord(reinterpret_cast<UInt64>(reference));
    return CFHash(reference);
  }
};
struct EqualWritten {
  bool operator()(CFTypeRef left, CFTypeRef right) const {
    if (left == right) return true;
    CFObject const& one = CFObject::Of(left);
    CFObject const& other = CFObject::Of(right);
    if (IsContainer(one) || one.type() != other.type()) return false;
    if (one.type() != kCFTypeNumber) return one.EqualTo(other);
    auto const& number = static_cast<__CFNumber const&>(one);
    auto const& another = static_cast<__CFNumber const&>(other);
    bool const is_same_form =
        number.is_real() ? number.kind() == another.kind()
                         : !another.is_real() && number.is_unsigned() == another.is_unsigned();
    // The bits, since 0.0 is not written as -0.0.
    return is_same_form && number.as_unsigned() == another.as_unsigned();
  }
};

std::size_t BytesToHold(UInt64 value) {
  return value <= 0xFF ? 1 : (static_cast<std::size_t>(std::bit_width(value)) + 7) / 8;
}

class Writer {
 public:
  Writer(std::vector<unsigned char>& bytes, PropertyListError& error)
      : bytes_(bytes), start_(bytes.size()), error_(error) {}

  bool Write(CFPropertyListRef root) {
    if (!Collect(root, 0)) return false;
    reference_width_ = BytesToHold(objects_.size() - 1);
    bytes_.insert(bytes_.end(), kMagic, kMagic + kMagicSize);
    std::vector<UInt64> offsets;
    for (CFTypeRef const object : objects_) {
      offsets.push_back(bytes_.size() - start_);
      WriteObject(object);
    }
    UInt64 const table = bytes_.size() - start_;
    std::size_t const offset_width = BytesToHold(table);
    for (UInt64 const offset : offsets) Append(offset, offset_width);
    Append(0, 6);
    Append(offset_width, 1);
    Append(reference_width_, 1);
    Append(offsets.size(), 8);
    Append(0, 8);
    Append(table, 8);
    return true;
  }

 private:
  static constexpr int kBeingCollected = -1;
  struct Place {
    UInt64 number;
    int height;  // How many containers deep.
  };

  bool Fail(std::string message) {
    error_ = {0, std::move(message)};
    return false;
  }

  // Numbers the object and all it holds, containers before what they hold.
  bool Collect(CFTypeRef object, int enclosing);
  bool CollectInside(CFTypeRef object, int enclosing, int& height);
  bool CollectHeld(CFTypeRef object, int enclosing, int& height);

  void Append(UInt64 value, std::size_t width) {
    for (std::size_t i = width; i-- > 0;) bytes_.push_back(static_cast<UInt8>(value >> 8 * i));
  }
  void AppendMarker(unsigned kind, UInt64 count) {
    bool const fits = count < kCountFollows;
    Append(kind << 4 | (fits ? count : kCountFollows), 1);
    if (!fits) AppendInteger(count);
  }
  void AppendInteger(UInt64 value) {
    std::size_t const width = std::bit_ceil(BytesToHold(value));
    Append(kInteger << 4 | static_cast<unsigned>(std::countr_zero(width)), 1);
    Append(value, width);
  }
  void AppendReference(CFTypeRef object) { Append(places_.at(object).number, reference_width_); }

  void WriteObject(CFTypeRef reference);
  void WriteNumber(__CFNumber const& number);
  void WriteString(__CFString const& string);

  std::vector<unsigned char>& bytes_;
  std::size_t start_;
  PropertyListError& error_;
  std::size_t reference_width_ = 1;
  std::vector<CFTypeRef> objects_;
  std::unordered_map<CFTypeRef, Place, HashWritten, EqualWritten> places_;
};

bool Writer::Collect(CFTypeRef object, int enclosing) {
  if (object == nullptr) return Fail("nothing, where an object must be");
  auto const [found, is_new] = places_.try_emplace(object, Place{objects_.size(), 0});
  Place& place = found->second;
  if (!is_new) {
    if (place.height == kBeingCollected) return Fail("a container that holds itself");
    return enclosing + place.height <= kPropertyListNesting || Fail(kTooDeep);
  }
  objects_.push_back(object);
  int height = 0;
  if (IsContainer(CFObject::Of(object))) {
    if (enclosing >= kPropertyListNesting) return Fail(kTooDeep);
    place.height = kBeingCollected;
    if (!CollectHeld(object, enclosing + 1, height)) return false;
    ++height;
  }
  place.height = height;
  switch (CFGetTypeID(object)) {
    case kCFTypeString:
    case kCFTypeNull:
    case kCFTypeDictionary:
    case kCFTypeArray:
    case kCFTypeData:
    case kCFTypeBoolean:
    case kCFTypeNumber:
    case kCFTypeDate:
      return true;
    default:
      return Fail("a kind of object that property lists do not have");
  }
}

bool Writer::CollectHeld(CFTypeRef object, int enclosing, int& height) {
  if (CFGetTypeID(object) == kCFTypeArray) {
    auto const& array = *static_cast<__CFArray const*>(object);
    if (!array.holds_objects()) return Fail("an array of what is not objects");
    return std::ranges::all_of(
        array.values(), [&](CFTypeRef value) { return CollectInside(value, enclosing, height); });
  }
  auto const& dictionary = *static_cast<__CFDictionary const*>(object);
  if (!dictionary.holds_object_keys() || !dictionary.holds_object_values()) {
    return Fail("a dictionary of what is not objects");
  }
  for (auto const& [key, value] : dictionary.pairs()) {
    if (key == nullptr || CFGetTypeID(key) != kCFTypeString) {
      return Fail("a key that is not a string");
    }
  }
  for (auto const part : kPartsInOrder) {
    for (auto const& pair : dictionary.pairs()) {
      if (!CollectInside(pair.*part, enclosing, height)) return false;
    }
  }
  return true;
}

bool Writer::CollectInside(CFTypeRef object, int enclosing, int& height) {
  if (!Collect(object, enclosing)) return false;
  height = std::max(height, places_.at(object).height);
  return true;
}

void Writer::WriteObject(CFTypeRef reference) {
  switch (CFGetTypeID(reference)) {
    case kCFTypeString:
      return WriteString(*static_cast<CFStringRef>(reference));
    case kCFTypeNumber:
      return WriteNumber(*static_cast<CFNumberRef>(reference));
    case kCFTypeBoolean:
      return Append(reference == kCFBooleanTrue ? kTrue : kFalse, 1);
    case kCFTypeDate:
      Append(kDateMarker, 1);
      return Append(std::bit_cast<UInt64>(static_cast<CFDateRef>(reference)->time()), 8);
    case kCFTypeData: {
      auto const& data = *static_cast<CFDataRef>(reference);
      AppendMarker(kData, data.length());
      bytes_.insert(bytes_.end(), data.bytes(), data.bytes() + data.length());
      return;
    }
    case kCFTypeArray: {
      auto const& array = *static_cast<CFArrayRef>(reference);
      AppendMarker(kArray, array.values().size());
      for (CFTypeRef const value : array.values()) AppendReference(value);
      return;
    }
    case kCFTypeDictionary: {
      auto const& dictionary = *static_cast<CFDictionaryRef>(reference);
      AppendMarker(kDictionary, dictionary.pairs().size());
      for (auto const part : kPartsInOrder) {
        for (auto const& pair : dictionary.pairs()) AppendReference(pair.*part);
      }
      return;
    }
    default:
      return Append(kNull, 1);
  }
}

void Writer::WriteNumber(__CFNumber const& number) {
  if (number.kind() == kCFNumberFloat32Type) {
    Append(kReal << 4 | 2, 1);
    return Append(std::bit_cast<UInt32>(static_cast<float>(number.as_real())), 4);
  }
  if (number.is_real()) {
    Append(kReal << 4 | 3, 1);
    return Append(std::bit_cast<UInt64>(number.as_real()), 8);
  }
  if (!number.is_unsigned()) return AppendInteger(number.as_unsigned());
  // Of 8 bytes it would be negative.
  Append(kInteger << 4 | 4, 1);
  Append(0, 8);
  Append(number.as_unsigned(), 8);
}

void Writer::WriteString(__CFString const& string) {
  AppendMarker(string.is_ascii() ? kAscii : kUtf16, string.length());
  if (string.is_ascii()) {
    bytes_.insert(bytes_.end(), string.ascii(), string.ascii() + string.length());
    return;
  }
  for (std::size_t i = 0; i < string.length(); ++i) Append(string.units()[i], 2);
}

}  // namespace

bool WriteBinaryPropertyList(CFPropertyListRef root, std::vector<unsigned char>& bytes,
                             PropertyListError& error) {
  return Writer(bytes, error).Write(root);
}
