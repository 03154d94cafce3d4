// The parts of a time by the calendar, in the machine's time zone and in universal time, and that
// time zone itself.
#include <cstdio>
#include <string_view>

#include "frame/registration.h"
#include "portable_inspectors/calendar_time.h"
#include "portable_inspectors/machine_time.h"
#include "portable_inspectors/moment.h"
#include "portable_inspectors/text.h"

namespace {

using Text = inspector_string;

constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;

template <class R, R (*part)(CalendarTime const&)>
R LocalPart(moment const& time) {
  return part(CalendarTimeAt(time, ZoneOffsetAt(time)));
}

template <class R, R (*part)(CalendarTime const&)>
R UniversalPart(moment const& time) {
  return part(CalendarTimeAt(time, time_interval()));
}

// A part under its name for local time and under "universal ..." for universal time.
template <class R, R (*part)(CalendarTime const&)>
class PartProperties {
 public:
  PartProperties(char const* singular, char const* plural, char const* universal_singular,
                 char const* universal_plural)
      : local_(singular, plural, LocalPart<R, part>, nullptr),
        universal_(universal_singular, universal_plural, UniversalPart<R, part>,
                   DependsOnlyOnParameters) {}

 private:
  Property<moment, R> local_;
  Property<moment, R> universal_;
};

integer YearOf(CalendarTime const& time) { return time.year; }
integer MonthOf(CalendarTime const& time) { return time.month; }
integer DayOf(CalendarTime const& time) { return time.day; }
integer DayOfWeek(CalendarTime const& time) { return time.day_of_week; }
integer DayOfYear(CalendarTime const& time) { return time.day_of_year; }
integer HourOf(CalendarTime const& time) {
  return time.time_of_day / (3600 * kMicrosecondsPerSecond);
}
integer MinuteOf(CalendarTime const& time) {
  return time.time_of_day / (60 * kMicrosecondsPerSecond) % 60;
}
integer SecondOf(CalendarTime const& time) {
  return time.time_of_day / kMicrosecondsPerSecond % 60;
}
integer MicrosecondOf(CalendarTime const& time) {
  return time.time_of_day % kMicrosecondsPerSecond;
}
time_interval TimeOfDay(CalendarTime const& time) { return time_interval(time.time_of_day); }

Text MonthName(CalendarTime const& time) {
  constexpr std::string_view kNames[] = {"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
  return Slice(kNames[time.month - 1]);
}

Text Weekday(CalendarTime const& time) {
  constexpr std::string_view kNames[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                         "Friday", "Saturday", "Sunday"};
  return Slice(kNames[time.day_of_week - 1]);
}

// "2026-11-21".
Text Date(CalendarTime const& time) {
  char text[40];
  int const length = std::snprintf(text, sizeof(text), "%04lld-%02d-%02d",
                                   static_cast<long long>(time.year), time.month, time.day);
  return CopyText({text, static_cast<std::size_t>(length)});
}

// Like the cast to "string", but in universal time, wherever the machine is.
Text TimeAsUniversalString(moment const& time) { return CopyText(WriteUniversalMoment(time)); }

PartProperties<integer, YearOf> year("year", "years", "universal year", "universal years");
PartProperties<integer, MonthOf> month("month", "months", "universal month", "universal months");
PartProperties<Text, MonthName> month_name("month name", "month names", "universal month name",
                                           "universal month names");
PartProperties<integer, DayOf> day("day", "days", "universal day", "universal days");
PartProperties<integer, DayOf> day_of_month("day_of_month", "days_of_month",
                                            "universal day_of_month", "universal days_of_month");
PartProperties<integer, DayOfWeek> day_of_week("day_of_week", "days_of_week",
                                               "universal day_of_week", "universal days_of_week");
PartProperties<integer, DayOfYear> day_of_year("day_of_year", "days_of_year",
                                               "universal day_of_year", "universal days_of_year");
PartProperties<Text, Weekday> weekday("weekday", "weekdays", "universal weekday",
                                      "universal weekdays");
PartProperties<integer, HourOf> hour("hour", "hours", "universal hour", "universal hours");
PartProperties<integer, MinuteOf> minute("minute", "minutes", "universal minute",
                                         "universal minutes");
PartProperties<integer, SecondOf> second("second", "seconds", "universal second",
                                         "universal seconds");
PartProperties<integer, MicrosecondOf> microsecond("microsecond", "microseconds",
                                                   "universal microsecond",
                                                   "universal microseconds");
PartProperties<Text, Date> date("date", "dates", "universal date", "universal dates");
PartProperties<time_interval, TimeOfDay> time_of_day("time_of_day", "times_of_day",
                                                     "universal time_of_day",
                                                     "universal times_of_day");

Cast<moment, Text> as_universal_string("universal string", TimeAsUniversalString,
                                       DependsOnlyOnParameters);

// The machine's zone as it stands at a moment.
struct time_zone {
  moment at;
};

}  // namespace

template <>
struct InspectorTypeName<time_zone> {
  static constexpr char const* kName = "time zone";
};

namespace {

time_zone time_zone_of_world() { return {moment_now()}; }
time_zone time_zone_of_time(moment const& time) { return {time}; }

Text name_of_time_zone(time_zone const&) { return CopyText(ZoneName()); }
time_interval offset_of_time_zone(time_zone const& zone) { return ZoneOffsetAt(zone.at); }

Type<time_zone> zone_type;
GlobalProperty<time_zone> zone("time zone", "time zones", time_zone_of_world, nullptr);
Property<moment, time_zone> zone_of_time("time zone", "time zones", time_zone_of_time, nullptr);
Property<time_zone, Text> zone_name("name", "names", name_of_time_zone, nullptr);
Property<time_zone, time_interval> zone_offset("offset", "offsets", offset_of_time_zone, nullptr);
Cast<time_zone, Text> zone_as_string("string", name_of_time_zone, nullptr);

}  // namespace
