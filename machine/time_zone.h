// The rules of a time zone, from a compiled zone file or from the text of a TZ variable.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/export.h"

namespace machine {

// What holds in a zone at one moment, in seconds.
struct ZoneOffset {
  std::int32_t from_utc = 0;  // east of Greenwich is positive
  std::int32_t daylight =
      0;  // the part of `from_utc` that daylight saving adds; 0 in standard time
  bool is_daylight = false;
};

// Immutable, so threads may share it.
class MACHINE_API ZoneRules {
 public:
  // A compiled zone file (TZif, versions 1 to 4). Null when it is malformed.
  static std::shared_ptr<ZoneRules const> FromCompiledFile(std::string_view bytes);

  // The POSIX form, such as "CET-1CEST,M3.5.0,M10.5.0/3". Null when it is malformed.
  static std::shared_ptr<ZoneRules const> FromPosixText(std::string_view text);

  static std::shared_ptr<ZoneRules const> Utc();

  // What holds at a moment, in seconds since 1970-01-01T00:00:00Z.
  ZoneOffset At(std::int64_t seconds) const;

  // The rule for moments after the last listed change, in the POSIX form; may be empty.
  std::string const& posix_text() const { return posix_text_; }
  // The compiled file that these were read from, empty where they come of a text.
  std::string const& compiled_file() const { return compiled_file_; }

 private:
  friend class CompiledZoneReader;

  struct Kind {
    std::int32_t from_utc = 0;
    bool is_daylight = false;
  };
  struct Change {
    std::int64_t at = 0;  // the first second at which it holds
    Kind kind;
  };
  // One of the two changes of a year: a day by one of three counts, and a time of that day.
  struct YearlyChange {
    char form = 'M';  // M month.week.weekday, J day 1..365 without leap days, 0 day 0..365
    int month = 0, week = 0, day = 0;
    std::int32_t time = 7200;
  };
  struct YearlyRule {
    std::int32_t standard = 0;
    std::int32_t daylight = 0;
    bool has_daylight = false;
    YearlyChange start, end;
  };
  class PosixParser;

  static std::int64_t MomentOf(YearlyChange const& change, std::int64_t year);
  static ZoneOffset OffsetBy(YearlyRule const& rule, std::int64_t seconds);
  std::int32_t StandardBeside(std::size_t index) const;

  Kind before_;  // holds before the first change
  std::vector<Change> changes_;
  std::optional<YearlyRule> rule_;  // holds after the last change
  std::string posix_text_, compiled_file_;
};

// A zone with the name under which the machine knows it ("Europe/Berlin").
struct TimeZone {
  std::string name;
  std::shared_ptr<ZoneRules const> rules;  // never null
};

}  // namespace machine
