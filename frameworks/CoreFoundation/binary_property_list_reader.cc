#include <CoreFoundation/CFNull.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/binary_property_list.h"
#include "frameworks/CoreFoundation/binary_property_list_form.h"
#include "frameworks/CoreFoundation/binary_property_list_objects.h"
#include "frameworks/CoreFoundation/data_object.h"
#include "frameworks/CoreFoundation/dictionary_object.h"
#include "frameworks/CoreFoundation/encodings/convert.h"
#include "frameworks/CoreFoundation/number_object.h"
#include "frameworks/CoreFoundation/string_object.h"

using namespace binary_property_list;

namespace {

// What follows an object's first byte: how many (bytes, units, references), and where they begin.
struct Extent {
  UInt64 count = 0;
  std::size_t begin = 0;
};

class Reader {
 public:
  Reader(std::span<unsigned char const> bytes, PropertyListError& error)
      : bytes_(bytes), error_(error) {}

  ~Reader() {
    for (CFTypeRef const object : dropped_) CFRelease(object);
  }

  CFPropertyListRef Read() {
    if (!ReadTrailer()) return nullptr;
    words_.resize(count_, KnownObjects::kUnread);
    known_ = {words_};
    int height = 0;
    return ReadObject(root_, 0, height);
  }

 private:
  bool Refuse(std::size_t position, char const* message) {
    error_ = {position, message};
    return false;
  }
  std::nullptr_t Fail(std::size_t position, char const* message) {
    Refuse(position, message);
    return nullptr;
  }

  bool ReadTrailer();
  // One reference, or null. `enclosing` counts the containers around the object, `height` becomes
  // at least that of the object.
  CFTypeRef ReadObject(UInt64 number, int enclosing, int& height);
  CFTypeRef ReadKnownObject(std::size_t number, int enclosing);
  CFTypeRef ReadNewObject(std::size_t number, int enclosing);
  CFTypeRef ReadSimple(std::size_t at);
  CFTypeRef ReadInteger(std::size_t at);
  CFTypeRef ReadReal(std::size_t at);
  CFTypeRef ReadDate(std::size_t at);
  CFTypeRef ReadData(std::size_t at);
  CFTypeRef ReadAscii(std::size_t at);
  CFTypeRef ReadUtf16(std::size_t at);
  CFTypeRef ReadUid(std::size_t at);
  CFTypeRef ReadArray(std::size_t at, int enclosing, int& height);
  CFTypeRef ReadDictionary(std::size_t at, int enclosing, int& height);
  bool FillDictionary(__CFDictionary& dictionary, Extent extent, int enclosing, int& height);

  // The count in or behind the first byte, each one `width` bytes, all of them inside the file.
  bool ReadExtent(std::size_t at, std::size_t width, Extent& extent);
  // Whether `size` bytes from `begin` on lie before the offset table and leave those of all objects
  // together within the file, which bounds the memory that objects take.
  bool Claim(std::size_t at, std::size_t begin, UInt64 size);

  References ReferencesAt(std::size_t begin) const {
    return {bytes_.data() + begin, reference_width_};
  }

  ObjectBlocks blocks_;
  std::span<unsigned char const> bytes_;
  PropertyListError& error_;
  std::size_t table_ = 0;  // Where the objects end and their offsets begin.
  std::size_t count_ = 0;
  std::size_t root_ = 0;
  std::size_t offset_width_ = 0;
  std::size_t reference_width_ = 0;
  std::size_t claimed_ = 0;
  std::vector<UInt64> words_;
  KnownObjects known_ = {};
  // Keys that occurred twice, and their values: others may still refer to them.
  std::vector<CFTypeRef> dropped_;
  std::vector<UniChar> units_;
};

bool Reader::ReadTrailer() {
  if (!IsBinaryPropertyList(bytes_)) return Refuse(0, "not a binary property list");
  if (std::memcmp(bytes_.data(), kMagic, kMagicSize) != 0) {
    return Refuse(6, "a version of the binary form that is not known");
  }
  if (bytes_.size() < kMagicSize + 1 + 1 + kTrailerSize) {
    return Refuse(bytes_.size(), "cut off before its trailer");
  }
  std::size_t const trailer = bytes_.size() - kTrailerSize;
  offset_width_ = bytes_[trailer + 6];
  reference_width_ = bytes_[trailer + 7];
  if (offset_width_ - 1 >= 8) return Refuse(trailer + 6, "a width of offsets that is not 1 to 8");
  if (reference_width_ - 1 >= 8) {
    return Refuse(trailer + 7, "a width of references that is not 1 to 8");
  }
  UInt64 const count = LoadBigEndian(&bytes_[trailer + 8], 8);
  UInt64 const root = LoadBigEndian(&bytes_[trailer + 16], 8);
  UInt64 const table = LoadBigEndian(&bytes_[trailer + 24], 8);
  if (table <= kMagicSize || table >= trailer) {
    return Refuse(trailer + 24, "a table of offsets that lies outside the file");
  }
  if (count > table - kMagicSize || count * offset_width_ != trailer - table) {
    return Refuse(trailer + 8, "a number of objects that does not fit the table of offsets");
  }
  if (root >= count) return Refuse(trailer + 16, "a root that does not exist");
  table_ = table;
  count_ = count;
  root_ = root;
  return true;
}

CFTypeRef Reader::ReadObject(UInt64 number, int enclosing, int& height) {
  if (number >= count_) return Fail(table_, "a reference to an object that does not exist");
  CFTypeRef const object = known_.HeightOf(number) == KnownObjects::kUnread
                               ? ReadNewObject(number, enclosing)
                               : ReadKnownObject(number, enclosing);
  height = std::max<int>(height, known_.HeightOf(number));
  return object;
}

CFTypeRef Reader::ReadKnownObject(std::size_t number, int enclosing) {
  std::size_t const entry = table_ + number * offset_width_;
  UInt16 const height = known_.HeightOf(number);
  if (height == KnownObjects::kBeingRead) return Fail(entry, "a container that holds itself");
  if (enclosing + height > kPropertyListNesting) return Fail(entry, kTooDeep);
  CFObject::Of(known_.ObjectOf(number)).RetainUnshared();
  return known_.ObjectOf(number);
}

CFTypeRef Reader::ReadNewObject(std::size_t number, int enclosing) {
  std::size_t const entry = table_ + number * offset_width_;
  UInt64 const at = LoadBigEndian(&bytes_[entry], offset_width_);
  if (at < kMagicSize || at >= table_) {
    return Fail(entry, "an offset that lies outside the objects");
  }
  unsigned const kind = bytes_[at] >> 4;
  bool const is_container = kind == kArray || kind == kDictionary;
  int height = is_container || kind == kUid ? 1 : 0;
  if (enclosing + height > kPropertyListNesting) return Fail(at, kTooDeep);
  known_.Enter(number, nullptr, KnownObjects::kBeingRead);
  CFTypeRef const object = !is_container    ? ReadSimple(at)
                           : kind == kArray ? ReadArray(at, enclosing + 1, height)
                                            : ReadDictionary(at, enclosing + 1, height);
  known_.Enter(number, object, static_cast<UInt16>(height));
  return object;
}

CFTypeRef Reader::ReadSimple(std::size_t at) {
  switch (bytes_[at] >> 4) {
    case kSingle:
      break;
    case kInteger:
      return ReadInteger(at);
    case kReal:
      return ReadReal(at);
    case kDate:
      return ReadDate(at);
    case kData:
      return ReadData(at);
    case kAscii:
      return ReadAscii(at);
    case kUtf16:
      return ReadUtf16(at);
    case kUid:
      return ReadUid(at);
    default:
      return Fail(at, "a kind of object that property lists do not have");
  }
  if (!Claim(at, at, 1)) return nullptr;
  switch (bytes_[at]) {
    case kNull:
      return CFRetain(kCFNull);
    case kFalse:
      return CFRetain(kCFBooleanFalse);
    case kTrue:
      return CFRetain(kCFBooleanTrue);
    default:
      return Fail(at, "a kind of object that property lists do not have");
  }
}

bool Reader::Claim(std::size_t at, std::size_t begin, UInt64 size) {
  if (begin > table_ || size > table_ - begin) {
    return Refuse(at, "an object that goes on behind the last");
  }
  claimed_ += begin - at + size;
  if (claimed_ > table_) return Refuse(at, "objects that overlap");
  return true;
}

bool Reader::ReadExtent(std::size_t at, std::size_t width, Extent& extent) {
  extent = {bytes_[at] & 0xFu, at + 1};
  if (extent.count == kCountFollows) {
    if (!Claim(at, at, 2)) return false;
    unsigned const marker = bytes_[at + 1];
    std::size_t const size = std::size_t{1} << (marker & 0xF);
    if (marker >> 4 != kInteger || size > 8) return Refuse(at + 1, "a count that is no integer");
    if (!Claim(at + 2, at + 2, size)) return false;
    extent = {LoadBigEndian(&bytes_[at + 2], size), at + 2 + size};
    // Claimed again below with what is counted.
    claimed_ -= 2 + size;
  }
  // No multiplication that could overflow: a file has fewer bytes than that.
  if (extent.count > table_) return Refuse(at, "an object that goes on behind the last");
  return Claim(at, extent.begin, extent.count * width);
}

CFTypeRef Reader::ReadInteger(std::size_t at) {
  unsigned const power = bytes_[at] & 0xF;
  if (power > 4) return Fail(at, "an integer wider than 16 bytes");
  std::size_t const width = std::size_t{1} << power;
  if (!Claim(at, at + 1, width)) return nullptr;
  unsigned char const* const start = &bytes_[at + 1];
  if (width <= 8)
    return __CFNumber::MakeSigned(static_cast<SInt64>(LoadBigEndian(start, width)),
                                  kCFNumberSInt64Type, &blocks_);
  UInt64 const high = LoadBigEndian(start, 8), low = LoadBigEndian(start + 8, 8);
  if (high == 0) return __CFNumber::MakeUnsigned(low, &blocks_);
  auto const value = static_cast<SInt64>(low);
  if (high != ~UInt64{0} || value >= 0) return Fail(at, "an integer outside the 64 bits");
  return __CFNumber::MakeSigned(value, kCFNumberSInt64Type, &blocks_);
}

CFTypeRef Reader::ReadReal(std::size_t at) {
  unsigned const power = bytes_[at] & 0xF;
  if (power != 2 && power != 3) return Fail(at, "a real of neither 4 nor 8 bytes");
  std::size_t const width = std::size_t{1} << power;
  if (!Claim(at, at + 1, width)) return nullptr;
  UInt64 const bits = LoadBigEndian(&bytes_[at + 1], width);
  if (power == 3)
    return __CFNumber::MakeReal(std::bit_cast<double>(bits), kCFNumberFloat64Type, &blocks_);
  return __CFNumber::MakeReal(std::bit_cast<float>(static_cast<UInt32>(bits)), kCFNumberFloat32Type,
                              &blocks_);
}

CFTypeRef Reader::ReadDate(std::size_t at) {
  if (bytes_[at] != kDateMarker) return Fail(at, "a date that is not 8 bytes wide");
  if (!Claim(at, at + 1, 8)) return nullptr;
  auto const time = std::bit_cast<double>(LoadBigEndian(&bytes_[at + 1], 8));
  if (!std::isfinite(time)) return Fail(at, "a date that is no time");
  return CFObject::MakeIn<__CFDate>(&blocks_, 0, time);
}

CFTypeRef Reader::ReadData(std::size_t at) {
  Extent extent;
  if (!ReadExtent(at, 1, extent)) return nullptr;
  __CFData* const data = __CFData::MakeUnfilled(extent.count, &blocks_);
  std::memcpy(data->bytes(), bytes_.data() + extent.begin, extent.count);
  return data;
}

CFTypeRef Reader::ReadAscii(std::size_t at) {
  Extent extent;
  if (!ReadExtent(at, 1, extent)) return nullptr;
  unsigned char const* const text = bytes_.data() + extent.begin;
  if (!encodings::IsAscii(text, extent.count)) return Fail(at, "an ASCII string that is not ASCII");
  return __CFString::MakeAscii(text, extent.count, &blocks_);
}

CFTypeRef Reader::ReadUtf16(std::size_t at) {
  Extent extent;
  if (!ReadExtent(at, 2, extent)) return nullptr;
  unsigned char const* const text = bytes_.data() + extent.begin;
  units_.resize(extent.count);
  for (std::size_t i = 0; i < extent.count; ++i) {
    units_[i] = static_cast<UniChar>(text[2 * i] << 8 | text[2 * i + 1]);
  }
  return __CFString::MakeUnits(units_.data(), units_.size(), &blocks_);
}

CFTypeRef Reader::ReadUid(std::size_t at) {
  std::size_t const width = (bytes_[at] & 0xF) + std::size_t{1};
  if (width > 8) return Fail(at, "a UID wider than 8 bytes");
  if (!Claim(at, at + 1, width)) return nullptr;
  CFTypeRef const pair[] = {
      CFRetain(CFSTR("CF$UID")),
      __CFNumber::MakeUnsigned(LoadBigEndian(&bytes_[at + 1], width), &blocks_)};
  return __CFDictionary::MakeTaking(pair, __CFDictionary::Keep::kFirst, &blocks_);
}

CFTypeRef Reader::ReadArray(std::size_t at, int enclosing, int& height) {
  Extent extent;
  if (!ReadExtent(at, reference_width_, extent)) return nullptr;
  __CFArray* const array = __CFArray::MakeUnfilled(extent.count, &blocks_);
  int inside = 0;
  References const references = ReferencesAt(extent.begin);
  KnownObjects const known = known_;
  for (UInt64 i = 0; i < extent.count; ++i) {
    CFTypeRef object = known.RetainSimple(references[i]);
    if (object == nullptr) object = ReadObject(references[i], enclosing, inside);
    if (object == nullptr) {
      CFRelease(array);
      return nullptr;
    }
    array->Take(object);
  }
  height = inside + 1;
  return array;
}

CFTypeRef Reader::ReadDictionary(std::size_t at, int enclosing, int& height) {
  Extent extent;
  if (!ReadExtent(at, 2 * reference_width_, extent)) return nullptr;
  auto* const dictionary =
      __CFDictionary::MakeUnfilled(extent.count, __CFDictionary::kObjects, &blocks_);
  int inside = 0;
  if (!FillDictionary(*dictionary, extent, enclosing, inside)) {
    CFRelease(dictionary);
    return nullptr;
  }
  dictionary->Settle(__CFDictionary::Keep::kLast, &dropped_);
  height = inside + 1;
  return dictionary;
}

// The references to all keys come first, those to their values behind.
bool Reader::FillDictionary(__CFDictionary& dictionary, Extent extent, int enclosing, int& height) {
  References const references = ReferencesAt(extent.begin);
  KnownObjects const known = known_;
  for (UInt64 i = 0; i < extent.count; ++i) {
    CFTypeRef key = known.RetainSimple(references[i]);
    if (key == nullptr) key = ReadObject(references[i], enclosing, height);
    if (key == nullptr) return false;
    dictionary.TakeKey(key);
    if (CFObject::Of(key).type() != kCFTypeString) {
      return Refuse(extent.begin + i * reference_width_, "a key that is not a string");
    }
  }
  for (UInt64 i = 0; i < extent.count; ++i) {
    UInt64 const reference = references[extent.count + i];
    CFTypeRef value = known.RetainSimple(reference);
    if (value == nullptr) value = ReadObject(reference, enclosing, height);
    if (value == nullptr) return false;
    dictionary.TakeValue(i, value);
  }
  return true;
}

}  // namespace

bool IsBinaryPropertyList(std::span<unsigned char const> bytes) {
  constexpr std::size_t kVersionSize = 2;
  return bytes.size() >= kMagicSize &&
         std::memcmp(bytes.data(), kMagic, kMagicSize - kVersionSize) == 0;
}

CFPropertyListRef ReadBinaryPropertyList(std::span<unsigned char const> bytes,
                                         PropertyListError& error) {
  return Reader(bytes, error).Read();
}
