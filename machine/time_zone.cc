#include "machine/time_zone.h"

#include <algorithm>
#include <cctype>
#include <chrono>

namespace machine {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;

// Big-endian numbers and pieces from the front of a text; a piece that is not there fails all.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : text_(text) {}

  bool failed() const { return failed_; }
  std::string_view rest() const { return text_; }

  std::string_view Take(std::uint64_t size) {
    if (size > text_.size()) {
      failed_ = true;
      text_ = {};
      return {};
    }
    std::string_view const piece = text_.substr(0, size);
    text_.remove_prefix(size);
    return piece;
  }

  std::uint64_t Number(std::size_t size) {
    std::uint64_t number = 0;
    for (char byte : Take(size)) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
  }

 private:
  std::string_view text_;
  bool failed_ = false;
};

std::int64_t DaysOf(std::int64_t year, int month, int day) {
  using namespace std::chrono;
  return sys_days(std::chrono::year(static_cast<int>(year)) / month / day)
      .time_since_epoch()
      .count();
}

}  // namespace

// A file has a block with 32-bit times and, from version 2 on, one with 64-bit times and the rule
// for later moments after it.
class CompiledZoneReader {
 public:
  explicit CompiledZoneReader(std::string_view bytes) : cursor_(bytes) {}

  std::shared_ptr<ZoneRules> Read() {
    Counts counts = ReadHeader();
    if (cursor_.failed()) return nullptr;
    std::size_t time_size = 4;
    if (counts.version >= '2') {
      cursor_.Take(counts.times * 5 + counts.kinds * 6 + counts.letters + counts.leaps * 8 +
                   counts.standards + counts.universals);
      counts = ReadHeader();
      time_size = 8;
    }
    auto rules = std::make_shared<ZoneRules>();
    if (!ReadBlock(counts, time_size, *rules)) return nullptr;
    if (time_size == 8 && !ReadFooter(*rules)) return nullptr;
    return rules;
  }

 private:
  struct Counts {
    char version = 0;
    std::uint64_t universals = 0, standards = 0, leaps = 0, times = 0, kinds = 0, letters = 0;
  };

  Counts ReadHeader() {
    Counts counts;
    if (cursor_.Take(4) != "TZif") cursor_.Take(UINT64_MAX);
    counts.version = static_cast<char>(cursor_.Number(1));
    cursor_.Take(15);
    for (std::uint64_t* count : {&counts.universals, &counts.standards, &counts.leaps,
                                 &counts.times, &counts.kinds, &counts.letters}) {
      *count = cursor_.Number(4);
    }
    return counts;
  }

  bool ReadBlock(Counts const& counts, std::size_t time_size, ZoneRules& rules) {
    Cursor times(cursor_.Take(counts.times * time_size));
    Cursor indexes(cursor_.Take(counts.times));
    std::string_view const kinds = cursor_.Take(counts.kinds * 6);
    cursor_.Take(counts.letters + counts.leaps * (time_size + 4) + counts.standards +
                 counts.universals);
    if (cursor_.failed() || counts.kinds == 0) return false;

    auto const kind_at = [&](std::uint64_t index) {
      Cursor fields(kinds.substr(index * 6, 6));
      auto const offset = static_cast<std::int32_t>(fields.Number(4));
      return ZoneRules::Kind{offset, fields.Number(1) != 0};
    };
    // The farthest offsets that the format allows.
    constexpr std::int32_t kFarthestWest = -25 * 3600 + 1, kFarthestEast = 26 * 3600 - 1;
    for (std::uint64_t i = 0; i < counts.kinds; ++i) {
      std::int32_t const offset = kind_at(i).from_utc;
      if (offset < kFarthestWest || offset > kFarthestEast) return false;
    }
    rules.before_ = kind_at(0);
    rules.changes_.reserve(counts.times);
    for (std::uint64_t i = 0; i < counts.times; ++i) {
      std::uint64_t const index = indexes.Number(1);
      if (index >= counts.kinds) return false;
      std::uint64_t const time = times.Number(time_size);
      rules.changes_.push_back(
          {time_size == 4 ? static_cast<std::int32_t>(time) : static_cast<std::int64_t>(time),
           kind_at(index)});
    }
    return std::is_sorted(rules.changes_.begin(), rules.changes_.end(),
                          [](auto const& left, auto const& right) { return left.at < right.at; });
  }

  bool ReadFooter(ZoneRules& rules) {
    std::string_view const rest = cursor_.rest();
    std::size_t const end = rest.empty() ? std::string_view::npos : rest.find('\n', 1);
    if (rest.empty() || rest.front() != '\n' || end == std::string_view::npos) return false;
    std::string_view const text = rest.substr(1, end - 1);
    if (text.empty()) return true;
    auto const parsed = ZoneRules::FromPosixText(text);
    if (parsed == nullptr) return false;
    rules.rule_ = parsed->rule_;
    rules.posix_text_ = text;
    return true;
  }

  Cursor cursor_;
};

class ZoneRules::PosixParser {
 public:
  explicit PosixParser(std::string_view text) : text_(text) {}

  std::optional<YearlyRule> Parse() {
    YearlyRule rule;
    std::int32_t west = 0;
    if (!SkipName() || !ReadTime(west, 24)) return {};
    rule.standard = -west;
    if (text_.empty()) return rule;

    rule.has_daylight = true;
    rule.daylight = rule.standard + 3600;
    if (!SkipName()) return {};
    if (!text_.empty() && text_.front() != ',') {
      if (!ReadTime(west, 24)) return {};
      rule.daylight = -west;
    }
    // Without dates the C library takes those of the United States.
    if (text_.empty()) text_ = ",M3.2.0,M11.1.0";
    if (!ReadChange(rule.start) || !ReadChange(rule.end) || !text_.empty()) return {};
    return rule;
  }

 private:
  bool Skip(char character) {
    if (text_.empty() || text_.front() != character) return false;
    text_.remove_prefix(1);
    return true;
  }

  // At least three letters, or anything in angle brackets.
  bool SkipName() {
    if (Skip('<')) {
      std::size_t const end = text_.find('>');
      if (end == std::string_view::npos) return false;
      text_.remove_prefix(end + 1);
      return true;
    }
    std::size_t length = 0;
    while (length < text_.size() && std::isalpha(static_cast<unsigned char>(text_[length]))) {
      ++length;
    }
    text_.remove_prefix(length);
    return length >= 3;
  }

  bool ReadNumber(int& number, int highest) {
    if (text_.empty() || text_.front() < '0' || text_.front() > '9') return false;
    number = 0;
    while (!text_.empty() && text_.front() >= '0' && text_.front() <= '9') {
      number = number * 10 + (text_.front() - '0');
      if (number > highest) return false;
      text_.remove_prefix(1);
    }
    return true;
  }

  // [+-]hours[:minutes[:seconds]]
  bool ReadTime(std::int32_t& seconds, int highest_hour) {
    bool const is_negative = Skip('-');
    if (!is_negative) Skip('+');
    int hours = 0, minutes = 0, rest = 0;
    if (!ReadNumber(hours, highest_hour)) return false;
    if (Skip(':') && !ReadNumber(minutes, 59)) return false;
    if (Skip(':') && !ReadNumber(rest, 59)) return false;
    seconds = hours * 3600 + minutes * 60 + rest;
    if (is_negative) seconds = -seconds;
    return true;
  }

  bool ReadDate(YearlyChange& change) {
    if (Skip('M')) {
      change.form = 'M';
      return ReadNumber(change.month, 12) && change.month >= 1 && Skip('.') &&
             ReadNumber(change.week, 5) && change.week >= 1 && Skip('.') &&
             ReadNumber(change.day, 6);
    }
    change.form = Skip('J') ? 'J' : '0';
    return ReadNumber(change.day, 365) && (change.form == '0' || change.day >= 1);
  }

  // ,date[/time]; a time may lie up to a week off its day.
  bool ReadChange(YearlyChange& change) {
    if (!Skip(',') || !ReadDate(change)) return false;
    return !Skip('/') || ReadTime(change.time, 167);
  }

  std::string_view text_;
};

std::shared_ptr<ZoneRules const> ZoneRules::FromCompiledFile(std::string_view bytes) {
  auto const rules = CompiledZoneReader(bytes).Read();
  if (rules != nullptr) rules->compiled_file_ = bytes;
  return rules;
}

std::shared_ptr<ZoneRules const> ZoneRules::FromPosixText(std::string_view text) {
  auto const rule = PosixParser(text).Parse();
  if (!rule) return nullptr;
  auto rules = std::make_shared<ZoneRules>();
  rules->rule_ = rule;
  rules->posix_text_ = text;
  return rules;
}

std::shared_ptr<ZoneRules const> ZoneRules::Utc() { return std::make_shared<ZoneRules const>(); }

// In seconds since 1970 of the wall clock that shows when the change comes.
std::int64_t ZoneRules::MomentOf(YearlyChange const& change, std::int64_t year) {
  std::int64_t days = DaysOf(year, 1, 1);
  if (change.form == 'M') {
    std::int64_t const first = DaysOf(year, change.month, 1);
    std::int64_t const weekday = ((first + 4) % 7 + 7) % 7;  // 1970-01-01 was a Thursday
    days = first + (change.day - weekday + 7) % 7 + (change.week - 1) * 7;
    std::int64_t const next_month =
        change.month == 12 ? DaysOf(year + 1, 1, 1) : DaysOf(year, change.month + 1, 1);
    if (days >= next_month) days -= 7;  // week 5 is the last one
  } else if (change.form == 'J') {
    bool const is_leap = std::chrono::year(static_cast<int>(year)).is_leap();
    days += change.day - 1 + (is_leap && change.day >= 60 ? 1 : 0);
  } else {
    days += change.day;
  }
  return days * kSecondsOfDay + change.time;
}

ZoneOffset ZoneRules::OffsetBy(YearlyRule const& rule, std::int64_t seconds) {
  if (!rule.has_daylight) return {rule.standard, 0, false};
  // The calendar counts years up to 32767; what lies beyond is asked at its edge.
  constexpr std::int64_t kFarthest = 900'000'000'000;
  std::int64_t const local = std::clamp(seconds, -kFarthest, kFarthest) + rule.standard;
  using namespace std::chrono;
  std::int64_t const year = static_cast<int>(
      year_month_day(floor<days>(sys_seconds(std::chrono::seconds(local)))).year());
  std::int64_t const start = MomentOf(rule.start, year) - rule.standard;
  std::int64_t const end = MomentOf(rule.end, year) - rule.daylight;
  std::int64_t const moment = local - rule.standard;
  bool const is_daylight =
      start < end ? start <= moment && moment < end : !(end <= moment && moment < start);
  if (!is_daylight) return {rule.standard, 0, false};
  return {rule.daylight, rule.daylight - rule.standard, true};
}

// The standard offset that held last before a change to daylight saving, else the next one after.
std::int32_t ZoneRules::StandardBeside(std::size_t index) const {
  for (std::size_t i = index; i-- > 0;) {
    if (!changes_[i].kind.is_daylight) return changes_[i].kind.from_utc;
  }
  if (!before_.is_daylight) return before_.from_utc;
  for (std::size_t i = index + 1; i < changes_.size(); ++i) {
    if (!changes_[i].kind.is_daylight) return changes_[i].kind.from_utc;
  }
  return changes_[index].kind.from_utc;
}

ZoneOffset ZoneRules::At(std::int64_t seconds) const {
  if (rule_ && (changes_.empty() || seconds >= changes_.back().at)) {
    return OffsetBy(*rule_, seconds);
  }
  auto const next =
      std::upper_bound(changes_.begin(), changes_.end(), seconds,
                       [](std::int64_t at, Change const& change) { return at < change.at; });
  if (next == changes_.begin()) return {before_.from_utc, 0, before_.is_daylight};
  auto const index = static_cast<std::size_t>(next - changes_.begin()) - 1;
  Kind const kind = changes_[index].kind;
  std::int32_t const daylight = kind.is_daylight ? kind.from_utc - StandardBeside(index) : 0;
  return {kind.from_utc, daylight, kind.is_daylight};
}

}  // namespace machine
