#include "machine/live/sources.h"
#include "machine/system_files.h"

namespace machine::live {
Fact<TimeZone> Zone::CurrentZone() const {
  if (root_.is_running()) {
    Fact<std::string> const variable = Environment(root_).Variable("TZ");
    if (variable) return ZoneOfVariable(*variable);
  }
  return ZoneOfFile();
}

// The C library's reading: a file where there is one by that name, else a rule. An empty value
// means UTC.
Fact<TimeZone> Zone::ZoneOfVariable(std::string const& text) const {
  std::string const name = text.substr(text.starts_with(':') ? 1 : 0);
  if (name.empty()) return TimeZone{"UTC", ZoneRules::Utc()};
  bool const is_path = name.front() == '/';
  std::string const path = is_path ? name : std::string(kZoneFolder) + name;
  if (Fact<Rules> const rules = RulesIn(path)) {
    std::string const short_name = is_path ? NameOfZoneFile(name) : name;
    return TimeZone{short_name.empty() ? name : short_name, *rules};
  }
  if (Rules const rules = ZoneRules::FromPosixText(name)) return TimeZone{name, rules};
  return Absence{Outcome::kMalformed, "environment TZ", name};
}

// Without the file the zone is UTC, as its manual page has it.
Fact<TimeZone> Zone::ZoneOfFile() const {
  Fact<Rules> const rules = RulesIn(kLocalTimePath);
  if (!rules && rules.outcome() == Outcome::kAbsent) return TimeZone{"UTC", ZoneRules::Utc()};
  if (!rules) return rules.absence();
  if (Fact<std::string> const target = root_.ReadLink(kLocalTimePath)) {
    if (std::string name = NameOfZoneFile(*target); !name.empty()) return TimeZone{name, *rules};
  }
  if (Fact<std::string> const name = root_.ReadText("/etc/timezone")) {
    return TimeZone{*name, *rules};
  }
  return TimeZone{(*rules)->posix_text(), *rules};
}

Fact<Zone::Rules> Zone::RulesIn(std::string const& path) const {
  Fact<std::string> const identity = root_.IdentityOf(path);
  if (!identity) return identity.absence();
  std::lock_guard lock(guard_);
  if (kept_path_ == path && kept_identity_ == *identity) {
    Announce(path, Outcome::kAnswered);
    return kept_rules_;
  }
  Fact<std::string> const bytes = root_.ReadFile(path);
  if (!bytes) return bytes.absence();
  Rules rules = ZoneRules::FromCompiledFile(*bytes);
  if (rules == nullptr) return Absence{Outcome::kMalformed, path, {}};
  kept_path_ = path;
  kept_identity_ = *identity;
  kept_rules_ = rules;
  return rules;
}

}  // namespace machine::live
