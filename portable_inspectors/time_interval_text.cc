#include "portable_inspectors/time_interval_text.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace {

constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;
constexpr std::uint64_t kSecondsPerDay = 86'400;

// Consumes `text` from the front; every function leaves it untouched when it does not fit.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : text_(text) {}

  bool AtEnd() const { return text_.empty(); }

  bool Skip(std::string_view token) {
    if (!text_.starts_with(token)) return false;
    text_.remove_prefix(token.size());
    return true;
  }

  std::optional<std::uint64_t> Number() {
    std::uint64_t number = 0;
    auto const [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), number);
    if (error != std::errc()) return std::nullopt;
    text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
    return number;
  }

  // One or two digits below 60.
  std::optional<std::uint64_t> Sixtieth() {
    std::string_view const before = text_;
    std::optional<std::uint64_t> const number = Number();
    if (number && *number < 60 && before.size() - text_.size() <= 2) return number;
    text_ = before;
    return std::nullopt;
  }

  // One to six digits of a fraction, as microseconds.
  std::optional<std::uint64_t> Microseconds() {
    std::uint64_t microseconds = 0;
    std::size_t digits = 0;
    for (; digits < 6 && digits < text_.size() && text_[digits] >= '0' && text_[digits] <= '9';
         ++digits) {
      microseconds = microseconds * 10 + static_cast<std::uint64_t>(text_[digits] - '0');
    }
    if (digits == 0) return std::nullopt;
    text_.remove_prefix(digits);
    for (; digits < 6; ++digits) microseconds *= 10;
    return microseconds;
  }

 private:
  std::string_view text_;
};

bool AddScaled(std::uint64_t& sum, std::uint64_t number, std::uint64_t scale) {
  return !__builtin_mul_overflow(number, scale, &number) &&
         !__builtin_add_overflow(sum, number, &sum);
}

// "hh:mm:ss" with an optional fraction, added to `magnitude`.
bool ReadClock(Cursor& cursor, bool after_days, std::uint64_t& magnitude) {
  std::optional<std::uint64_t> const hours = cursor.Number();
  if (!hours || (after_days && *hours > 23) || !cursor.Skip(":")) return false;
  std::optional<std::uint64_t> const minutes = cursor.Sixtieth();
  if (!minutes || !cursor.Skip(":")) return false;
  std::optional<std::uint64_t> const seconds = cursor.Sixtieth();
  if (!seconds) return false;
  std::optional<std::uint64_t> microseconds = 0;
  if (cursor.Skip(".")) microseconds = cursor.Microseconds();
  return microseconds && AddScaled(magnitude, *hours, 3600 * kMicrosecondsPerSecond) &&
         AddScaled(magnitude, *minutes, 60 * kMicrosecondsPerSecond) &&
         AddScaled(magnitude, *seconds, kMicrosecondsPerSecond) &&
         AddScaled(magnitude, *microseconds, 1);
}

bool ReadMagnitude(Cursor& cursor, std::uint64_t& magnitude) {
  Cursor days_cursor = cursor;
  std::optional<std::uint64_t> const days = days_cursor.Number();
  if (!days || !days_cursor.Skip(" day")) {
    return ReadClock(cursor, /*after_days=*/false, magnitude) && cursor.AtEnd();
  }
  days_cursor.Skip("s");
  if (!AddScaled(magnitude, *days, kSecondsPerDay * kMicrosecondsPerSecond)) return false;
  if (days_cursor.AtEnd()) return true;
  return days_cursor.Skip(", ") && ReadClock(days_cursor, /*after_days=*/true, magnitude) &&
         days_cursor.AtEnd();
}

}  // namespace

std::string TimeIntervalToText(time_interval interval) {
  bool const negative = interval.Microseconds() < 0;
  std::uint64_t magnitude = static_cast<std::uint64_t>(interval.Microseconds());
  if (negative) magnitude = 0 - magnitude;
  std::uint64_t const microseconds = magnitude % kMicrosecondsPerSecond;
  std::uint64_t const seconds = magnitude / kMicrosecondsPerSecond;
  std::uint64_t const days = seconds / kSecondsPerDay;

  std::string text = negative ? "-" : "";
  if (days > 0) text += std::to_string(days) + (days == 1 ? " day, " : " days, ");
  char clock[40];
  std::snprintf(clock, sizeof(clock), "%02u:%02u:%02u.%06u",
                static_cast<unsigned>(seconds % kSecondsPerDay / 3600),
                static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60),
                static_cast<unsigned>(microseconds));
  return text + clock;
}

std::optional<time_interval> TextToTimeInterval(std::string_view text) {
  Cursor cursor(text);
  bool const negative = cursor.Skip("-");
  std::uint64_t magnitude = 0;
  if (!ReadMagnitude(cursor, magnitude)) return std::nullopt;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  if (magnitude > kLargest + (negative ? 1 : 0)) return std::nullopt;
  return time_interval(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}
