#include "machine/capture/recorded_time.h"

#include <charconv>
#include <cstdio>

#include "machine/live/text.h"

namespace machine::capture {

std::string TextOf(FileTime const& time) {
  char text[40];
  std::snprintf(text, sizeof text, "%lld.%09u", static_cast<long long>(time.seconds),
                time.nanoseconds);
  return text;
}

Fact<FileTime> TimeIn(Field const& field) {
  constexpr std::int64_t kMicro = 1'000'000;
  if (auto const* date = field.As<RecordDate>()) {
    std::int64_t const microseconds = date->microseconds_since_1970;
    std::int64_t const rest = (microseconds % kMicro + kMicro) % kMicro;
    return FileTime{(microseconds - rest) / kMicro, static_cast<std::uint32_t>(rest * 1000)};
  }
  Fact<std::string> const text = field.Text();
  if (!text) return text.absence();
  FileTime time;
  char const* const end = text->data() + text->size();
  auto const [point, error] = std::from_chars(text->data(), end, time.seconds);
  if (error != std::errc()) return field.Malformed("not a time");
  if (point == end) return time;
  std::string_view const digits(point + 1, static_cast<std::size_t>(end - point - 1));
  auto const nanoseconds = live::ParseNumber<std::uint32_t>(digits);
  if (*point != '.' || digits.size() != 9 || !nanoseconds) return field.Malformed("not a time");
  time.nanoseconds = *nanoseconds;
  return time;
}

}  // namespace machine::capture
