#include "machine/capture/sources.h"

namespace machine::capture {
namespace {

constexpr std::int64_t kMicro = 1'000'000;

}  // namespace

// A date in XML has whole seconds; the rest is beside it.
Fact<std::int64_t> Clock::MicrosecondsSince1970() const {
  auto const date = facts_.Ask("Taken", [](Field const& field) { return field.Date(); });
  if (!date) return date.absence();
  Field const rest = facts_["TakenMicroseconds"];
  if (!rest.exists()) return date->microseconds_since_1970;
  Fact<std::int64_t> const microseconds = rest.Integer(0, kMicro - 1);
  if (!microseconds) return microseconds.absence();
  std::int64_t sum = 0;
  if (__builtin_add_overflow(date->microseconds_since_1970, *microseconds, &sum)) {
    return rest.Malformed("out of range");
  }
  return sum;
}

Fact<std::int64_t> Clock::BootSecondsSince1970() const {
  auto const date = facts_.Ask("BootTime", [](Field const& field) { return field.Date(); });
  if (!date) return date.absence();
  return date->microseconds_since_1970 / kMicro;
}

}  // namespace machine::capture
