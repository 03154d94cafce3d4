#include <CoreFoundation/CFString.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <string>

#include "frameworks/CoreFoundation/encodings/convert.h"
#include "frameworks/CoreFoundation/encodings/names.h"
#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/string_object.h"
#include "machine/never_destroyed.h"

using encodings::Conversion;
using encodings::Form;

CFStringRef __CFString::MakeAscii(UInt8 const* bytes, std::size_t length, ObjectBlocks* blocks) {
  return FillAscii(
      length, [&](UInt8* out) { std::copy(bytes, bytes + length, out); }, blocks);
}

CFStringRef __CFString::MakeUnits(UniChar const* units, std::size_t length, ObjectBlocks* blocks) {
  bool const is_ascii =
      std::all_of(units, units + length, [](UniChar unit) { return unit < 0x80; });
  auto const fill = [&](auto* out) { std::copy(units, units + length, out); };
  return is_ascii ? FillAscii(length, fill, blocks) : FillUnits(length, fill, blocks);
}

bool __CFString::EqualTo(CFObject const& other) const {
  auto const& string = static_cast<__CFString const&>(other);
  if (length_ != string.length_ || is_ascii() != string.is_ascii()) return false;
  return std::memcmp(ascii(), string.ascii(), is_ascii() ? length_ : length_ * sizeof(UniChar)) ==
         0;
}

// Equal strings are kept alike, so their bytes are as good as their units.
CFHashCode __CFString::Hash() const {
  return HashBytes(ascii(), is_ascii() ? length_ : length_ * sizeof(UniChar));
}

namespace {

bool IsInside(CFRange range, __CFString const& string) {
  auto const length = static_cast<CFIndex>(string.length());
  return range.location >= 0 && range.length >= 0 && range.location <= length &&
         range.length <= length - range.location;
}

// ASCII to an encoding that has it as it is: the conversion is a copy.
Conversion CopyAscii(UInt8 const* text, std::size_t length, UInt8* buffer, std::size_t capacity) {
  if (buffer == nullptr) return {length, length};
  std::size_t const count = std::min(length, capacity);
  if (count > 0) std::memcpy(buffer, text, count);
  return {count, count};
}

UInt32 TakeCharacter(StringUnits const& text, std::size_t& at) {
  UInt32 const unit = text.start()[at++];
  if ((unit & 0xFC00) != 0xD800 || at == text.length()) return unit;
  UInt32 const next = text.start()[at];
  if ((next & 0xFC00) != 0xDC00) return unit;
  ++at;
  return 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
}

// Without the library that knows more, the letters of ASCII alone are folded.
UInt32 FoldCase(UInt32 character) {
  if (character >= 'A' && character <= 'Z') return character - 'A' + 'a';
  if (character < 0x80) return character;
  unicode::Service* const service = unicode::LoadService();
  return service == nullptr ? character : service->FoldCase(character);
}

CFComparisonResult Ordered(std::size_t left, std::size_t right) {
  return left < right   ? kCFCompareLessThan
         : left > right ? kCFCompareGreaterThan
                        : kCFCompareEqualTo;
}

}  // namespace

CFTypeID CFStringGetTypeID() { return kCFTypeString; }

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, UInt8 const* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
  if (numBytes < 0) return nullptr;
  auto const length = static_cast<std::size_t>(numBytes);
  if (encodings::ExtendsAscii(encoding) && encodings::IsAscii(bytes, length)) {
    return __CFString::MakeAscii(bytes, length);
  }
  Form const form = isExternalRepresentation ? Form::kExternal : Form::kInternal;
  std::vector<UniChar> units;
  if (!encodings::Decode(bytes, length, encoding, form, units)) return nullptr;
  return __CFString::MakeUnits(units.data(), units.size());
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, char const* cStr,
                                      CFStringEncoding encoding) {
  if (cStr == nullptr) return nullptr;
  return CFStringCreateWithBytes(allocator, reinterpret_cast<UInt8 const*>(cStr),
                                 static_cast<CFIndex>(std::strlen(cStr)), encoding, false);
}

CFStringRef CFStringCreateWithPascalString(CFAllocatorRef allocator, ConstStr255Param pStr,
                                           CFStringEncoding encoding) {
  if (pStr == nullptr) return nullptr;
  return CFStringCreateWithBytes(allocator, pStr + 1, pStr[0], encoding, false);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, UniChar const* chars, CFIndex numChars) {
  if (numChars < 0) return nullptr;
  return __CFString::MakeUnits(chars, static_cast<std::size_t>(numChars));
}

CFIndex CFStringGetLength(CFStringRef string) { return static_cast<CFIndex>(string->length()); }

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
  return string->UnitAt(static_cast<std::size_t>(index));
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
  if (!IsInside(range, *string)) return;
  for (CFIndex i = 0; i < range.length; ++i) {
    buffer[i] = string->UnitAt(static_cast<std::size_t>(range.location + i));
  }
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufLen, CFIndex* usedBufLen) {
  Conversion done;
  if (IsInside(range, *string) && (buffer == nullptr || maxBufLen >= 0)) {
    auto const begin = static_cast<std::size_t>(range.location);
    auto const length = static_cast<std::size_t>(range.length);
    auto const capacity = static_cast<std::size_t>(maxBufLen);
    if (string->is_ascii() && encodings::ExtendsAscii(encoding)) {
      done = CopyAscii(string->ascii() + begin, length, buffer, capacity);
    } else {
      StringUnits const units(*string, begin, length);
      Form const form = isExternalRepresentation ? Form::kExternal : Form::kInternal;
      encodings::Encode(units.start(), length, encoding, lossByte, form, buffer, capacity, done);
    }
  }
  if (usedBufLen != nullptr) *usedBufLen = static_cast<CFIndex>(done.bytes);
  return static_cast<CFIndex>(done.units);
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
  if (buffer == nullptr || bufferSize <= 0) return false;
  CFIndex const length = CFStringGetLength(string);
  CFIndex used = 0;
  CFIndex const converted =
      CFStringGetBytes(string, CFRangeMake(0, length), encoding, 0, false,
                       reinterpret_cast<UInt8*>(buffer), bufferSize - 1, &used);
  bool const is_whole = converted == length && (length == 0 || used > 0);
  buffer[is_whole ? used : 0] = '\0';
  return is_whole;
}

CFComparisonResult CFStringCompare(CFStringRef left, CFStringRef right,
                                   CFStringCompareFlags compareOptions) {
  StringUnits const one(*left, 0, left->length());
  StringUnits const other(*right, 0, right->length());
  bool const folds = (compareOptions & kCFCompareCaseInsensitive) != 0;
  std::size_t i = 0, k = 0;
  while (i < one.length() && k < other.length()) {
    UInt32 a = folds ? FoldCase(TakeCharacter(one, i)) : one.start()[i++];
    UInt32 b = folds ? FoldCase(TakeCharacter(other, k)) : other.start()[k++];
    if (a != b) return Ordered(a, b);
  }
  return Ordered(one.length() - i, other.length() - k);
}

CFStringEncoding CFStringConvertIANACharSetNameToEncoding(CFStringRef string) {
  char name[256];
  CFStringEncoding encoding = kCFStringEncodingInvalidId;
  if (!CFStringGetCString(string, name, sizeof name, kCFStringEncodingASCII)) return encoding;
  encodings::FindEncoding({name, string->length()}, encoding);
  return encoding;
}

CFStringRef CFStringConvertEncodingToIANACharSetName(CFStringEncoding encoding) {
  auto const* row = encodings::FindNamedEncoding(encoding);
  return row == nullptr ? nullptr : __CFStringMakeConstantString(row->name);
}

CFStringRef __CFStringMakeConstantString(char const* cStr) {
  using Constants = std::map<std::string, CFStringRef, std::less<>>;
  static machine::NeverDestroyed<Constants> constants;
  static machine::NeverDestroyed<std::mutex> guard;
  std::lock_guard lock(*guard);
  auto const found = constants->find(std::string_view(cStr));
  if (found != constants->end()) return found->second;
  CFStringRef const string = CFStringCreateWithCString(nullptr, cStr, kCFStringEncodingUTF8);
  if (string != nullptr) constants->emplace(cStr, string);
  return string;
}
