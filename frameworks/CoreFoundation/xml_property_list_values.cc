#include "frameworks/CoreFoundation/xml_property_list_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace {

constexpr std::string_view kSpace = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  std::size_t const first = text.find_first_not_of(kSpace);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Takes a sign off the front; whether it was a minus.
bool TakeSign(std::string_view& text) {
  bool const is_negative = text.starts_with('-');
  if (is_negative || text.starts_with('+')) text.remove_prefix(1);
  return is_negative;
}

template <typename Number>
bool ReadWhole(std::string_view text, Number& number, auto... format) {
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number, format...);
  return error == std::errc() && stop == end;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool EqualsWithoutCase(std::string_view text, std::string_view lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

// Days between 2001-01-01 and the first of March of a year, before which its leap day lies.
std::int64_t DaysToMarch(std::int64_t year) {
  auto const floor_divide = [](std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
  };
  return 365 * year + floor_divide(year, 4) - floor_divide(year, 100) + floor_divide(year, 400) -
         730'791;
}

// Of a month counted from March: 31, 30, 31, 30, 31 days, again and again.
std::int64_t DaysToMonth(std::int64_t month_from_march) { return (153 * month_from_march + 2) / 5; }

std::int64_t DaysSince2001(std::int64_t year, std::int64_t month, std::int64_t day) {
  bool const belongs_to_year_before = month < 3;
  return DaysToMarch(belongs_to_year_before ? year - 1 : year) +
         DaysToMonth(belongs_to_year_before ? month + 9 : month - 3) + day - 1;
}

bool IsLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysOfMonth(std::int64_t year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Two digits behind a separator, taken off the front; -1 when they are not there.
int TakeTwoDigits(std::string_view& text, char separator) {
  if (text.size() < 3 || text[0] != separator || !IsDigit(text[1]) || !IsDigit(text[2])) return -1;
  int const number = (text[1] - '0') * 10 + (text[2] - '0');
  text.remove_prefix(3);
  return number;
}

constexpr UInt8 kNoSextet = 0xFF, kSkipped = 0xFE, kPadding = 0xFD;
constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<UInt8, 256> kSextets = [] {
  std::array<UInt8, 256> table;
  table.fill(kNoSextet);
  for (UInt8 i = 0; i < 64; ++i) table[static_cast<UInt8>(kAlphabet[i])] = i;
  for (char space : kSpace) table[static_cast<UInt8>(space)] = kSkipped;
  table['='] = kPadding;
  return table;
}();

// What a padded last group leaves: two or three sextets and the padding that completes them.
bool FinishBase64(UInt32 group, int sextets, int padding, std::vector<UInt8>& bytes) {
  if (sextets + padding != (sextets == 0 ? 0 : 4) || sextets == 1) return false;
  if (sextets >= 2) bytes.push_back(static_cast<UInt8>(group >> (sextets == 2 ? 4 : 10)));
  if (sextets == 3) bytes.push_back(static_cast<UInt8>(group >> 2));
  return true;
}

}  // namespace

std::optional<PropertyListInteger> ReadXmlInteger(std::string_view text) {
  text = Trimmed(text);
  PropertyListInteger integer;
  integer.is_negative = TakeSign(text);
  bool const is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (is_hexadecimal) text.remove_prefix(2);
  if (!ReadWhole(text, integer.magnitude, is_hexadecimal ? 16 : 10)) return {};
  if (integer.is_negative && integer.magnitude > std::uint64_t{1} << 63) return {};
  return integer;
}

std::optional<double> ReadXmlReal(std::string_view text) {
  text = Trimmed(text);
  bool const is_negative = TakeSign(text);
  // Wider than the result, so that what is too large or too small for that is read and becomes an
  // infinity or zero.
  long double wide;
  double value;
  if (EqualsWithoutCase(text, "nan")) {
    value = std::numeric_limits<double>::quiet_NaN();
  } else if (EqualsWithoutCase(text, "inf") || EqualsWithoutCase(text, "infinity")) {
    value = std::numeric_limits<double>::infinity();
  } else if (text.empty() || (text[0] != '.' && !IsDigit(text[0]))) {
    return {};
  } else if (!ReadWhole(text, value)) {
    if (!ReadWhole(text, wide)) return {};
    value = static_cast<double>(wide);
  }
  return is_negative ? -value : value;
}

void WriteXmlReal(double value, std::string& out) {
  if (std::isnan(value)) {
    out += "nan";
  } else if (std::isinf(value)) {
    out += value < 0 ? "-infinity" : "+infinity";
  } else {
    char digits[32];
    out.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
  }
}

std::optional<CFAbsoluteTime> ReadXmlDate(std::string_view text) {
  text = Trimmed(text);
  bool const is_negative = TakeSign(text);
  std::size_t const digits = std::min(text.find('-'), text.size());
  std::int64_t year;
  if (digits < 4 || digits > 9 || !ReadWhole(text.substr(0, digits), year)) return {};
  if (is_negative) year = -year;
  text.remove_prefix(digits);
  int const month = TakeTwoDigits(text, '-'), day = TakeTwoDigits(text, '-');
  int const hour = TakeTwoDigits(text, 'T'), minute = TakeTwoDigits(text, ':');
  int const second = TakeTwoDigits(text, ':');
  if (text != "Z" || month < 1 || month > 12 || day < 1 || day > DaysOfMonth(year, month) ||
      hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return {};
  }
  std::int64_t const seconds = (hour * 60 + minute) * 60 + second;
  return static_cast<double>(DaysSince2001(year, month, day) * 86'400 + seconds);
}

bool WriteXmlDate(CFAbsoluteTime time, std::string& out) {
  double const whole = std::floor(time);
  constexpr double kFarthest = 3e16;  // within nine digits of years
  if (!(std::abs(whole) < kFarthest)) return false;
  auto const seconds = static_cast<std::int64_t>(whole);
  std::int64_t const days = seconds / 86'400 - (seconds % 86'400 < 0 ? 1 : 0);
  auto const second_of_day = static_cast<int>(seconds - days * 86'400);
  // An estimate of the year, then the one step that it may be off.
  auto year = 2001 + static_cast<std::int64_t>(std::floor(static_cast<double>(days) / 365.2425));
  while (DaysSince2001(year, 1, 1) > days) --year;
  while (DaysSince2001(year + 1, 1, 1) <= days) ++year;
  int month = 12;
  while (DaysSince2001(year, month, 1) > days) --month;
  auto const day = static_cast<int>(days - DaysSince2001(year, month, 1)) + 1;
  char text[64];
  std::snprintf(text, sizeof text, "%s%04lld-%02d-%02dT%02d:%02d:%02dZ", year < 0 ? "-" : "",
                static_cast<long long>(year < 0 ? -year : year), month, day, second_of_day / 3600,
                second_of_day / 60 % 60, second_of_day % 60);
  out += text;
  return true;
}

bool ReadBase64(std::string_view text, std::vector<UInt8>& bytes) {
  bytes.clear();
  bytes.reserve(text.size() / 4 * 3);
  UInt32 group = 0;
  int sextets = 0, padding = 0;
  for (char const c : text) {
    UInt8 const sextet = kSextets[static_cast<UInt8>(c)];
    if (sextet == kSkipped) continue;
    if (sextet == kPadding) {
      ++padding;
      continue;
    }
    if (sextet == kNoSextet || padding > 0) return false;
    group = group << 6 | sextet;
    if (++sextets < 4) continue;
    bytes.insert(bytes.end(), {static_cast<UInt8>(group >> 16), static_cast<UInt8>(group >> 8),
                               static_cast<UInt8>(group)});
    group = 0;
    sextets = 0;
  }
  return FinishBase64(group, sextets, padding, bytes);
}

void WriteBase64(UInt8 const* bytes, std::size_t length, std::string_view indent,
                 std::size_t line_length, std::string& out) {
  std::size_t const line_bytes = line_length / 4 * 3;
  for (std::size_t line = 0; line < length; line += line_bytes) {
    std::size_t const end = std::min(length, line + line_bytes);
    out += indent;
    for (std::size_t at = line; at < end; at += 3) {
      std::size_t const count = std::min<std::size_t>(3, end - at);
      UInt32 group = 0;
      for (std::size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? bytes[at + i] : 0u);
      for (std::size_t i = 0; i < 4; ++i) {
        out += i <= count ? kAlphabet[group >> (18 - 6 * i) & 0x3F] : '=';
      }
    }
    out += '\n';
  }
}
