#include "frameworks/CoreFoundation/property_list_source.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "frameworks/CoreFoundation/encodings/convert.h"

namespace {

using namespace std::string_view_literals;

struct Mark {
  std::string_view bytes;
  CFStringEncoding encoding;
};

// The longer marks first: that of UTF-32 begins like that of UTF-16.
constexpr Mark kMarks[] = {
    {"\xFF\xFE\0\0"sv, kCFStringEncodingUTF32LE}, {"\0\0\xFE\xFF"sv, kCFStringEncodingUTF32BE},
    {"\xEF\xBB\xBF"sv, kCFStringEncodingUTF8},    {"\xFF\xFE"sv, kCFStringEncodingUTF16LE},
    {"\xFE\xFF"sv, kCFStringEncodingUTF16BE},
};

// Property lists begin with a character of ASCII, so zero bytes beside the first one tell.
CFStringEncoding GuessByZeros(std::string_view source) {
  if (source.size() < 2 || (source[0] != 0 && source[1] != 0)) return kCFStringEncodingUTF8;
  bool const is_wide = source.size() >= 4 && (source[0] != 0 ? source[2] == 0 : source[1] == 0);
  if (is_wide) return source[0] != 0 ? kCFStringEncodingUTF32LE : kCFStringEncodingUTF32BE;
  return source[0] != 0 ? kCFStringEncodingUTF16LE : kCFStringEncodingUTF16BE;
}

// The value of `encoding="..."` in an XML declaration; empty without one.
std::string_view DeclaredEncoding(std::string_view source) {
  source.remove_prefix(std::min(source.find_first_not_of(" \t\r\n"), source.size()));
  if (!source.starts_with("<?xml")) return {};
  source = source.substr(0, source.find("?>"));
  std::size_t at = source.find("encoding");
  if (at == source.npos) return {};
  at = source.find_first_not_of(" \t\r\n", at + 8);
  if (at == source.npos || source[at] != '=') return {};
  at = source.find_first_not_of(" \t\r\n", at + 1);
  if (at == source.npos || (source[at] != '"' && source[at] != '\'')) return {};
  std::size_t const end = source.find(source[at], at + 1);
  return end == source.npos ? std::string_view() : source.substr(at + 1, end - at - 1);
}

// A source whose declaration could be read as ASCII is not in UTF-16, whatever that says.
CFStringEncoding NarrowEncoding(std::string_view name) {
  if (name.empty()) return kCFStringEncodingUTF8;
  CFStringEncoding encoding = kCFStringEncodingInvalidId;
  encodings::FindEncoding(name, encoding);
  switch (encoding) {
    case kCFStringEncodingASCII:
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
      return kCFStringEncodingUTF8;
    default:
      return encoding;
  }
}

}  // namespace

PropertyListSource::PropertyListSource(UInt8 const* bytes, std::size_t length)
    : borrowed_(reinterpret_cast<char const*>(bytes), length) {
  CFStringEncoding encoding = GuessByZeros(borrowed_);
  auto const* const mark = std::find_if(std::begin(kMarks), std::end(kMarks), [&](auto const& row) {
    return borrowed_.starts_with(row.bytes);
  });
  if (mark != std::end(kMarks)) {
    encoding = mark->encoding;
    borrowed_.remove_prefix(mark->bytes.size());
  } else if (encoding == kCFStringEncodingUTF8) {
    encoding = NarrowEncoding(DeclaredEncoding(borrowed_));
  }
  if (encoding == kCFStringEncodingInvalidId) {
    failure_ = "Unknown encoding";
  } else if (encoding != kCFStringEncodingUTF8) {
    Convert(encoding);
  }
}

void PropertyListSource::Convert(CFStringEncoding encoding) {
  using encodings::Form;
  auto const* const bytes = reinterpret_cast<UInt8 const*>(borrowed_.data());
  is_converted_ = true;
  failure_ = "The bytes are not text in their encoding";
  std::vector<UniChar> units;
  if (!encodings::Decode(bytes, borrowed_.size(), encoding, Form::kInternal, units)) return;
  encodings::Conversion size;
  encodings::Encode(units.data(), units.size(), kCFStringEncodingUTF8, 0, Form::kInternal, nullptr,
                    0, size);
  // An unpaired surrogate has no form in UTF-8.
  if (size.units != units.size()) return;
  converted_.resize(size.bytes);
  encodings::Encode(units.data(), units.size(), kCFStringEncodingUTF8, 0, Form::kInternal,
                    reinterpret_cast<UInt8*>(converted_.data()), converted_.size(), size);
  failure_ = nullptr;
}

std::size_t PropertyListSource::LineOf(std::size_t offset) const {
  std::string_view const before = text().substr(0, offset);
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}
