#include "host/scalar_json.h"

#include <CoreFoundation/CFNull.h>
#include <CoreFoundation/CFURL.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "portable/time_text.h"

namespace gatotu::host {
namespace {

bool IsHighSurrogate(UniChar unit) { return (unit & 0xFC00U) == 0xD800; }
bool IsLowSurrogate(UniChar unit) { return (unit & 0xFC00U) == 0xDC00; }

// Appends a character beyond ASCII as UTF-8.
void AppendCharacter(std::string& text, std::uint32_t code) {
  auto const append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (code < 0x800) {
    append(0xC0U | code >> 6U);
  } else if (code < 0x10000) {
    append(0xE0U | code >> 12U);
    append(0x80U | (code >> 6U & 0x3FU));
  } else {
    append(0xF0U | code >> 18U);
    append(0x80U | (code >> 12U & 0x3FU));
    append(0x80U | (code >> 6U & 0x3FU));
  }
  append(0x80U | (code & 0x3FU));
}

void AppendEscaped(std::string& text, UniChar unit) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  text += "\\u";
  for (unsigned const shift : {12U, 8U, 4U, 0U}) text += kDigits[unit >> shift & 0xFU];
}

void AppendAscii(std::string& text, UniChar unit) {
  switch (unit) {
    case '"':
      text += "\\\"";
      break;
    case '\\':
      text += "\\\\";
      break;
    case '\n':
      text += "\\n";
      break;
    case '\r':
      text += "\\r";
      break;
    case '\t':
      text += "\\t";
      break;
    default:
      if (unit < 0x20 || unit == 0x7F) {
        AppendEscaped(text, unit);
      } else {
        text += static_cast<char>(unit);
      }
  }
}

// The units of a string, a part at a time.
class UnitReader {
 public:
  explicit UnitReader(CFStringRef string) : string_(string), length_(CFStringGetLength(string)) {}

  bool IsAtEnd() const { return position_ == length_; }
  UniChar Peek() {
    if (position_ >= end_) Fill();
    return part_[static_cast<std::size_t>(position_ - begin_)];
  }
  UniChar Take() {
    UniChar const unit = Peek();
    ++position_;
    return unit;
  }

 private:
  void Fill() {
    begin_ = position_;
    end_ = std::min(length_, begin_ + static_cast<CFIndex>(part_.size()));
    CFStringGetCharacters(string_, CFRangeMake(begin_, end_ - begin_), part_.data());
  }

  CFStringRef string_;
  CFIndex length_;
  CFIndex position_ = 0, begin_ = 0, end_ = 0;
  std::array<UniChar, 256> part_;
};

void AppendString(CFStringRef string, std::string& text, std::size_t most) {
  text += '"';
  for (UnitReader units(string); !units.IsAtEnd() && text.size() <= most;) {
    UniChar const unit = units.Take();
    if (unit < 0x80) {
      AppendAscii(text, unit);
    } else if (IsHighSurrogate(unit) && !units.IsAtEnd() && IsLowSurrogate(units.Peek())) {
      AppendCharacter(text, 0x10000U + ((unit & 0x3FFU) << 10U) + (units.Take() & 0x3FFU));
    } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      AppendEscaped(text, unit);
    } else {
      AppendCharacter(text, unit);
    }
  }
  text += '"';
}

template <typename Number>
std::string_view Digits(Number number, std::array<char, 32>& room) {
  auto const end = std::to_chars(room.data(), room.data() + room.size(), number);
  return {room.data(), static_cast<std::size_t>(end.ptr - room.data())};
}

void AppendReal(double real, std::string& text) {
  if (std::isnan(real)) {
    text += "\"NaN\"";
  } else if (std::isinf(real)) {
    text += real > 0 ? "\"Infinity\"" : "\"-Infinity\"";
  } else {
    std::array<char, 32> room;
    std::string_view const digits = Digits(real, room);
    text += digits;
    if (digits.find_first_of(".e") == std::string_view::npos) text += ".0";
  }
}

void AppendNumber(CFNumberRef number, std::string& text) {
  std::array<char, 32> room;
  if (CFNumberIsFloatType(number) != 0) {
    double real = 0;
    CFNumberGetValue(number, kCFNumberFloat64Type, &real);
    AppendReal(real, text);
  } else if (CFNumberGetType(number) == kCFNumberSInt128Type) {
    CFSInt128Struct large = {};
    CFNumberGetValue(number, kCFNumberSInt128Type, &large);
    text += Digits(large.low, room);
  } else {
    SInt64 whole = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &whole);
    text += Digits(whole, room);
  }
}

void AppendDate(CFDateRef date, std::string& text) {
  CFAbsoluteTime const seconds = CFDateGetAbsoluteTime(date);
  double const microseconds = (seconds + kCFAbsoluteTimeIntervalSince1970) * 1e6;
  text += '"';
  // Within the 64 bits of an instant; false for what is no number.
  if (std::fabs(microseconds) < 9e18) {
    if (auto const shown = TimeToText(Instant{std::llround(microseconds)}, 0)) {
      ConstData const bytes(*shown);
      text.append(reinterpret_cast<char const*>(bytes.begin), bytes.Length());
      text += '"';
      return;
    }
  }
  std::array<char, 32> room;
  text += Digits(seconds, room);
  text += " seconds since 2001-01-01T00:00:00Z\"";
}

void AppendData(CFDataRef data, std::string& text, std::size_t most) {
  constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  UInt8 const* bytes = CFDataGetBytePtr(data);
  auto left = static_cast<std::size_t>(CFDataGetLength(data));
  text += '"';
  for (; left > 0 && text.size() <= most; bytes += 3) {
    std::size_t const taken = std::min<std::size_t>(left, 3);
    left -= taken;
    std::uint32_t const group = static_cast<std::uint32_t>(bytes[0]) << 16U |
                                (taken > 1 ? static_cast<std::uint32_t>(bytes[1]) << 8U : 0U) |
                                (taken > 2 ? bytes[2] : 0U);
    text += kAlphabet[group >> 18U];
    text += kAlphabet[group >> 12U & 0x3FU];
    text += taken > 1 ? kAlphabet[group >> 6U & 0x3FU] : '=';
    text += taken > 2 ? kAlphabet[group & 0x3FU] : '=';
  }
  text += '"';
}

}  // namespace

void AppendScalarJson(CFTypeRef object, std::string& text, std::size_t most) {
  CFTypeID const type = CFGetTypeID(object);
  if (type == CFStringGetTypeID()) {
    AppendString(static_cast<CFStringRef>(object), text, most);
  } else if (type == CFNumberGetTypeID()) {
    AppendNumber(static_cast<CFNumberRef>(object), text);
  } else if (type == CFBooleanGetTypeID()) {
    text += CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0 ? "true" : "false";
  } else if (type == CFDateGetTypeID()) {
    AppendDate(static_cast<CFDateRef>(object), text);
  } else if (type == CFDataGetTypeID()) {
    AppendData(static_cast<CFDataRef>(object), text, most);
  } else if (type == CFURLGetTypeID()) {
    AppendString(CFURLGetString(static_cast<CFURLRef>(object)), text, most);
  } else {
    text += type == CFNullGetTypeID() ? "null" : "\"unknown type\"";
  }
}

void AppendKeyJson(CFTypeRef key, std::string& text, std::size_t most) {
  if (CFGetTypeID(key) == CFStringGetTypeID()) {
    AppendString(static_cast<CFStringRef>(key), text, most);
    return;
  }
  text += "\"unknown type\"";
}

}  // namespace gatotu::host
