#include "portable/time_text.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "portable/ascii.h"

namespace {

constexpr std::int64_t kMicroseconds = 1'000'000;
constexpr std::int64_t kDay = 86'400 * kMicroseconds;

constexpr std::int64_t StartOfYear(int year) {
  return std::chrono::sys_days(std::chrono::year(year) / 1 / 1).time_since_epoch().count() * kDay;
}
constexpr std::int64_t kFirstMoment = StartOfYear(1);
constexpr std::int64_t kPastLastMoment = StartOfYear(10000);

// Reads the fields of a text from left to right. Once something did not fit, nothing does.
class FieldReader {
 public:
  explicit FieldReader(ConstData text) : rest_(text) {}

  bool IsGood() const { return is_good_; }
  bool IsAtEnd() const { return rest_.IsEmpty(); }

  // Exactly so many digits, of a number within the bounds.
  int Number(int digits, int least, int most) {
    int value = 0;
    for (int i = 0; i < digits; ++i) {
      if (rest_.IsEmpty() || !Ascii::Numeric().Contains(*rest_.begin)) {
        is_good_ = false;
        return least;
      }
      value = value * 10 + (*rest_.begin++ - '0');
    }
    is_good_ = is_good_ && value >= least && value <= most;
    return value;
  }

  // One of the bytes, which is told.
  unsigned char OneOf(char const* bytes) {
    if (rest_.IsEmpty() || !ConstData(bytes).Contains(*rest_.begin)) {
      is_good_ = false;
      return 0;
    }
    return *rest_.begin++;
  }

  bool IsNext(unsigned char byte) const { return !rest_.IsEmpty() && *rest_.begin == byte; }

  // Digits in any number, at least one; those of microseconds count.
  std::int64_t Fraction() {
    std::int64_t value = 0;
    int digits = 0;
    for (; !rest_.IsEmpty() && Ascii::Numeric().Contains(*rest_.begin); ++rest_.begin, ++digits) {
      if (digits < 6) value = value * 10 + (*rest_.begin - '0');
    }
    is_good_ = is_good_ && digits > 0;
    for (; digits < 6; ++digits) value *= 10;
    return value;
  }

 private:
  ConstData rest_;
  bool is_good_ = true;
};

// Microseconds since 1970 of the date's first moment.
std::int64_t ReadDate(FieldReader& reader, bool& is_date) {
  int year = reader.Number(4, 1, 9999);
  reader.OneOf("-");
  int month = reader.Number(2, 1, 12);
  reader.OneOf("-");
  int day = reader.Number(2, 1, 31);
  auto date = std::chrono::year(year) / month / day;
  is_date = date.ok();
  return is_date ? std::chrono::sys_days(date).time_since_epoch().count() * kDay : 0;
}

std::int64_t ReadTimeOfDay(FieldReader& reader) {
  std::int64_t hour = reader.Number(2, 0, 23);
  reader.OneOf(":");
  std::int64_t minute = reader.Number(2, 0, 59);
  reader.OneOf(":");
  std::int64_t second = reader.Number(2, 0, 59);
  std::int64_t fraction = 0;
  if (reader.IsNext('.')) {
    reader.OneOf(".");
    fraction = reader.Fraction();
  }
  return ((hour * 60 + minute) * 60 + second) * kMicroseconds + fraction;
}

std::int64_t ReadOffset(FieldReader& reader) {
  unsigned char sign = reader.OneOf("+-Zz");
  if (sign != '+' && sign != '-') return 0;
  std::int64_t hour = reader.Number(2, 0, 23);
  reader.OneOf(":");
  std::int64_t minute = reader.Number(2, 0, 59);
  std::int64_t offset = (hour * 60 + minute) * 60 * kMicroseconds;
  return sign == '-' ? -offset : offset;
}

}  // namespace

std::optional<TimeText> TimeToText(Instant time, std::int32_t offset_seconds) {
  using namespace std::chrono;
  std::int32_t minutes = offset_seconds / 60;
  if (std::abs(minutes) >= 24 * 60) return std::nullopt;
  std::int64_t local = 0;
  if (__builtin_add_overflow(time.microseconds, minutes * 60 * kMicroseconds, &local)) {
    return std::nullopt;
  }
  // Before there is a date: its year has 16 bits, and those of further times would wrap around.
  if (local < kFirstMoment || local >= kPastLastMoment) return std::nullopt;
  sys_time<microseconds> point{microseconds(local)};
  auto day = floor<days>(point);
  year_month_day date(day);
  std::int64_t rest = (point - day).count();
  int offset = std::abs(minutes);
  char text[64];
  int length = std::snprintf(
      text, sizeof(text), "%04d-%02u-%02uT%02d:%02d:%02d.%06d%c%02d:%02d", int(date.year()),
      unsigned(date.month()), unsigned(date.day()), int(rest / (3600 * kMicroseconds)),
      int(rest / (60 * kMicroseconds) % 60), int(rest / kMicroseconds % 60),
      int(rest % kMicroseconds), minutes < 0 ? '-' : '+', offset / 60, offset % 60);
  return length == 32 ? std::optional<TimeText>(ConstData(text, 32)) : std::nullopt;
}

std::optional<Instant> TextToTime(ConstData text) {
  FieldReader reader(text);
  bool is_date = false;
  std::int64_t date = ReadDate(reader, is_date);
  reader.OneOf("Tt ");
  std::int64_t time_of_day = ReadTimeOfDay(reader);
  std::int64_t offset = ReadOffset(reader);
  if (!reader.IsGood() || !is_date || !reader.IsAtEnd()) return std::nullopt;
  return Instant{date + time_of_day - offset};
}
