#include "frameworks/CoreFoundation/xml_property_list_writer.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "frameworks/CoreFoundation/string_object.h"
#include "frameworks/CoreFoundation/xml_property_list_values.h"

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";
constexpr std::size_t kLineLength = 76;
constexpr std::size_t kTabWidth = 8;

bool IsSurrogate(UInt32 unit) { return unit >= 0xD800 && unit < 0xE000; }

// Readers of XML turn carriage returns into newlines, and some characters may not stand in it.
bool NeedsNumber(UInt32 character) {
  return (character < 0x20 && character != '\t' && character != '\n') || character == 0x7F ||
         IsSurrogate(character) || character == 0xFFFE || character == 0xFFFF;
}

void AppendUtf8(UInt32 c, std::string& out) {
  int const more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  constexpr UInt32 kFirst[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kFirst[more] | c >> (6 * more));
  for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | (c >> (6 * i) & 0x3F));
}

class Writer {
 public:
  Writer(std::string& text, PropertyListError& error) : text_(text), error_(error) {}

  bool WriteValue(CFTypeRef value, int depth) {
    if (value == nullptr) return Fail("A null pointer is no property list");
    if (text_.size() > kLongestXmlPropertyList) return Fail("Too large when written out");
    CFTypeID const type = CFGetTypeID(value);
    Indent(depth - 1);
    if (type == CFDictionaryGetTypeID()) {
      return WriteDictionary(static_cast<CFDictionaryRef>(value), depth);
    }
    if (type == CFArrayGetTypeID()) return WriteArray(static_cast<CFArrayRef>(value), depth);
    if (type == CFDataGetTypeID()) return WriteData(static_cast<CFDataRef>(value), depth);
    if (type == CFStringGetTypeID()) {
      WriteString("string", *static_cast<CFStringRef>(value));
    } else if (type == CFNumberGetTypeID()) {
      WriteNumber(static_cast<CFNumberRef>(value));
    } else if (type == CFBooleanGetTypeID()) {
      text_ += CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? "<true/>\n" : "<false/>\n";
    } else if (type == CFDateGetTypeID()) {
      return WriteDate(static_cast<CFDateRef>(value));
    } else {
      return Fail("An object that no property list holds");
    }
    return true;
  }

 private:
  bool Fail(char const* message) {
    error_.message = message;
    return false;
  }

  void Indent(int levels) { text_.append(static_cast<std::size_t>(levels), '\t'); }
  void Open(std::string_view name) { (text_ += '<').append(name) += '>'; }
  void Close(std::string_view name) { (text_ += "</").append(name) += ">\n"; }

  bool WriteArray(CFArrayRef array, int depth) {
    if (depth > kPropertyListNesting) return Fail("Nested too deeply");
    CFIndex const count = CFArrayGetCount(array);
    if (count == 0) {
      text_ += "<array/>\n";
      return true;
    }
    text_ += "<array>\n";
    for (CFIndex i = 0; i < count; ++i) {
      if (!WriteValue(CFArrayGetValueAtIndex(array, i), depth + 1)) return false;
    }
    Indent(depth - 1);
    Close("array");
    return true;
  }

  bool WriteDictionary(CFDictionaryRef dictionary, int depth) {
    if (depth > kPropertyListNesting) return Fail("Nested too deeply");
    auto const count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    if (count == 0) {
      text_ += "<dict/>\n";
      return true;
    }
    std::vector<std::pair<CFStringRef, CFTypeRef>> pairs;
    if (!SortPairs(dictionary, count, pairs)) return Fail("A key that is not a string");
    text_ += "<dict>\n";
    for (auto const& [key, value] : pairs) {
      Indent(depth);
      WriteString("key", *key);
      if (!WriteValue(value, depth + 1)) return false;
    }
    Indent(depth - 1);
    Close("dict");
    return true;
  }

  static bool SortPairs(CFDictionaryRef dictionary, std::size_t count,
                        std::vector<std::pair<CFStringRef, CFTypeRef>>& pairs) {
    std::vector<void const*> keys(count), values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
    for (std::size_t i = 0; i < count; ++i) {
      if (keys[i] == nullptr || CFGetTypeID(keys[i]) != CFStringGetTypeID()) return false;
      pairs.emplace_back(static_cast<CFStringRef>(keys[i]), values[i]);
    }
    std::sort(pairs.begin(), pairs.end(), [](auto const& left, auto const& right) {
      return CFStringCompare(left.first, right.first, 0) == kCFCompareLessThan;
    });
    return true;
  }

  void WriteString(std::string_view element, __CFString const& string) {
    Open(element);
    std::size_t const length = string.length();
    for (std::size_t i = 0; i < length; ++i) {
      UInt32 character = string.UnitAt(i);
      if ((character & 0xFC00) == 0xD800 && i + 1 < length &&
          (string.UnitAt(i + 1) & 0xFC00) == 0xDC00) {
        character = 0x10000 + ((character - 0xD800) << 10) + (string.UnitAt(++i) - 0xDC00u);
      }
      WriteCharacter(character);
    }
    Close(element);
  }

  void WriteCharacter(UInt32 character) {
    if (character == '&') {
      text_ += "&amp;";
    } else if (character == '<') {
      text_ += "&lt;";
    } else if (character == '>') {
      text_ += "&gt;";
    } else if (NeedsNumber(character)) {
      text_ += "&#" + std::to_string(character) + ';';
    } else {
      AppendUtf8(character, text_);
    }
  }

  void WriteNumber(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
      double value = 0;
      CFNumberGetValue(number, kCFNumberFloat64Type, &value);
      text_ += "<real>";
      WriteXmlReal(value, text_);
      return Close("real");
    }
    SInt64 value = 0;
    text_ += "<integer>";
    if (CFNumberGetValue(number, kCFNumberSInt64Type, &value)) {
      text_ += std::to_string(value);
    } else {
      CFSInt128Struct large = {};
      CFNumberGetValue(number, kCFNumberSInt128Type, &large);
      text_ += std::to_string(large.low);
    }
    Close("integer");
  }

  bool WriteDate(CFDateRef date) {
    text_ += "<date>";
    if (!WriteXmlDate(CFDateGetAbsoluteTime(date), text_)) {
      return Fail("A date that cannot be written");
    }
    Close("date");
    return true;
  }

  // Lines stand as deep as their element and get shorter the deeper that is, down to a least
  // length.
  bool WriteData(CFDataRef data, int depth) {
    auto const levels = static_cast<std::size_t>(depth - 1);
    std::size_t const indent_width = std::min(levels, std::size_t{8}) * kTabWidth;
    text_ += "<data>\n";
    WriteBase64(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data)),
                std::string(levels, '\t'), kLineLength - indent_width, text_);
    Indent(depth - 1);
    Close("data");
    return true;
  }

  std::string& text_;
  PropertyListError& error_;
};

}  // namespace

bool WriteXmlPropertyList(CFPropertyListRef root, std::string& text, PropertyListError& error) {
  text += kHead;
  if (!Writer(text, error).WriteValue(root, 1)) return false;
  text += kFoot;
  return true;
}
