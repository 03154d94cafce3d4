#include "portable_inspectors/machine_time.h"

#include <cstdint>
#include <optional>

#include "evaluator/plugin/exceptions.h"
#include "portable/clock.h"
#include "portable/time_text.h"

namespace {

template <class T>
T OrNoSuchObject(std::optional<T> value) {
  if (!value) throw NoSuchObject();
  return *value;
}

}  // namespace

moment MachineNow() { return AsMoment(CurrentInstant()); }

time_interval ZoneOffsetAt(moment time) {
  return OrNoSuchObject(ZoneOffsetAt(AsInstant(time))) * second_of();
}

time_interval StandardZoneOffset() {
  return OrNoSuchObject(StandardZoneOffsetAt(CurrentInstant())) * second_of();
}

std::string ZoneName() { return OrNoSuchObject(NameOfTimeZone()); }

moment ReadMoment(std::string_view text) {
  return AsMoment(OrNoSuchObject(TextToTime(ConstData(text.data(), text.size()))));
}

std::string WriteMoment(moment time) {
  std::int32_t const offset = OrNoSuchObject(ZoneOffsetAt(AsInstant(time)));
  return MakeString(OrNoSuchObject(TimeToText(AsInstant(time), offset)));
}

std::string WriteUniversalMoment(moment time) {
  constexpr std::string_view kNoOffset = "+00:00";
  std::string text = MakeString(OrNoSuchObject(TimeToText(AsInstant(time), 0)));
  text.replace(text.size() - kNoOffset.size(), kNoOffset.size(), "Z");
  return text;
}
