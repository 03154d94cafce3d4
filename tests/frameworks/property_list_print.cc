#include "tests/frameworks/property_list_print.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "tests/support/big_endian_text.h"

namespace {

std::string Hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned char const byte : bytes) (text += kDigits[byte >> 4]) += kDigits[byte & 15];
  return text;
}

std::string PrintString(CFStringRef string) {
  std::string text = "\"";
  for (CFIndex i = 0; i < CFStringGetLength(string); ++i) {
    UniChar const unit = CFStringGetCharacterAtIndex(string, i);
    bool const is_plain = unit >= 0x20 && unit < 0x7F && unit != '"' && unit != '\\';
    text +=
        is_plain ? std::string(1, static_cast<char>(unit)) : "\\u" + Hex(BigEndianText(unit, 2));
  }
  return text + '"';
}

std::string PrintNumber(CFNumberRef number) {
  if (CFNumberIsFloatType(number)) {
    double real = 0;
    CFNumberGetValue(number, kCFNumberFloat64Type, &real);
    return 'r' + Hex(BigEndianText(std::bit_cast<std::uint64_t>(real), 8));
  }
  CFSInt128Struct integer = {};
  CFNumberGetValue(number, kCFNumberSInt128Type, &integer);
  return integer.high < 0 ? std::to_string(static_cast<SInt64>(integer.low))
                          : std::to_string(integer.low);
}

std::string PrintDictionary(CFDictionaryRef dictionary) {
  auto const count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<void const*> keys(count), values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  std::map<std::string, std::string> pairs;
  for (std::size_t i = 0; i < count; ++i) pairs[Print(keys[i])] = Print(values[i]);
  std::string text;
  for (auto const& [key, value] : pairs) text += (text.empty() ? "" : ",") + key + ':' + value;
  return '{' + text + '}';
}

}  // namespace

std::string Print(CFTypeRef value) {
  CFTypeID const type = CFGetTypeID(value);
  if (type == CFStringGetTypeID()) return PrintString(static_cast<CFStringRef>(value));
  if (type == CFNumberGetTypeID()) return PrintNumber(static_cast<CFNumberRef>(value));
  if (type == CFDictionaryGetTypeID()) return PrintDictionary(static_cast<CFDictionaryRef>(value));
  if (type == CFBooleanGetTypeID()) return value == kCFBooleanTrue ? "true" : "false";
  if (type == CFDataGetTypeID()) return '<' + Hex(BytesOfData(value)) + '>';
  if (type == CFDateGetTypeID()) {
    return '@' + std::to_string(std::llround(CFDateGetAbsoluteTime(static_cast<CFDateRef>(value))));
  }
  std::string text;
  auto const array = static_cast<CFArrayRef>(value);
  for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
    text += (i == 0 ? "" : ",") + Print(CFArrayGetValueAtIndex(array, i));
  }
  return '[' + text + ']';
}

std::string PrintParsed(std::string_view text, CFOptionFlags options) {
  CFStringRef reason = nullptr;
  OwnedObject const root(
      CFPropertyListCreateFromXMLData(nullptr, MakeBytes(text).get(), options, &reason));
  if (root != nullptr) return reason == nullptr ? Print(root.get()) : "both a value and a reason";
  OwnedString const owned(reason);
  return reason == nullptr ? "no reason" : "! " + BytesOf(reason, kCFStringEncodingUTF8);
}
