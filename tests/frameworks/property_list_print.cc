#include "tests/frameworks/property_list_print.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

namespace {

template <typename... Arguments>
std::string Format(char const* format, Arguments... arguments) {
  char text[64];
  std::snprintf(text, sizeof text, format, arguments...);
  return text;
}

std::string PrintString(CFStringRef string) {
  std::string text = "\"";
  for (CFIndex i = 0; i < CFStringGetLength(string); ++i) {
    UniChar const unit = CFStringGetCharacterAtIndex(string, i);
    bool const is_plain = unit >= 0x20 && unit < 0x7F && unit != '"' && unit != '\\';
    text += is_plain ? std::string(1, static_cast<char>(unit)) : Format("\\u%04x", unit);
  }
  return text + '"';
}

std::string PrintNumber(CFNumberRef number) {
  if (CFNumberIsFloatType(number)) {
    double real;
    CFNumberGetValue(number, kCFNumberFloat64Type, &real);
    std::uint64_t bits;
    std::memcpy(&bits, &real, sizeof bits);
    return Format("r%016llx", static_cast<unsigned long long>(bits));
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
  if (type == CFDictionaryGetTypeID()) {
    return PrintDictionary(static_cast<CFDictionaryRef>(value));
  }
  if (type == CFBooleanGetTypeID()) {
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? "true" : "false";
  }
  if (type == CFDateGetTypeID()) {
    return Format("@%.0f", CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)));
  }
  std::string text;
  if (type == CFDataGetTypeID()) {
    for (char const byte : BytesOfData(value)) {
      text += Format("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    }
    return '<' + text + '>';
  }
  auto const array = static_cast<CFArrayRef>(value);
  for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
    text += (i == 0 ? "" : ",") + Print(CFArrayGetValueAtIndex(array, i));
  }
  return '[' + text + ']';
}

std::string PrintParsed(std::string_view text, CFOptionFlags options) {
  OwnedObject const data = MakeBytes(text);
  CFStringRef reason = nullptr;
  OwnedObject const root(CFPropertyListCreateFromXMLData(
      nullptr, static_cast<CFDataRef>(data.get()), options, &reason));
  if (root != nullptr) return reason == nullptr ? Print(root.get()) : "both a value and a reason";
  OwnedString const owned(reason);
  return reason == nullptr ? "no reason" : "! " + BytesOf(reason, kCFStringEncodingUTF8);
}
