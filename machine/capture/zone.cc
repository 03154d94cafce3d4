#include "machine/capture/sources.h"
#include "machine/live/root.h"
#include "machine/live/text.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

constexpr char kName[] = "TimeZone", kRules[] = "TimeZoneRules";

bool IsZoneName(std::string const& name) {
  return !name.empty() && name.front() != '/' && name.find("..") == std::string::npos &&
         name.find('\0') == std::string::npos;
}

}  // namespace

Fact<TimeZone> Zone::CurrentZone() const {
  std::call_once(is_found_, [this] { zone_ = FindZone(); });
  Announce(kName, zone_->outcome());
  return *zone_;
}

Fact<TimeZone> Zone::FindZone() const {
  if (!facts_.Knows(kName)) return ZoneOfFile();
  Fact<std::string> const name = facts_.Text(kName);
  if (!name) return name.absence();
  if (facts_[kRules].exists()) {
    Fact<Rules> const rules = RecordedRules();
    if (!rules) return rules.absence();
    return TimeZone{*name, *rules};
  }
  Rules const rules = RulesNamed(*name);
  if (rules == nullptr) return facts_[kName].Malformed("no rules for " + *name);
  return TimeZone{*name, rules};
}

// A compiled zone, or a rule in the form of a TZ variable.
Fact<Zone::Rules> Zone::RecordedRules() const {
  Field const field = facts_[kRules];
  Fact<std::string> const text = field.Text();
  if (!text) return text.absence();
  bool const is_rule = field.As<std::string>() != nullptr;
  Rules rules = is_rule && text->empty() ? ZoneRules::Utc()
                : is_rule                ? ZoneRules::FromPosixText(*text)
                                         : ZoneRules::FromCompiledFile(*text);
  if (rules == nullptr) return field.Malformed("not the rules of a zone");
  return rules;
}

Zone::Rules Zone::RulesNamed(std::string const& name) const {
  if (IsZoneName(name)) {
    auto const own = files_.ReadFile(std::string(kZoneFolder) + name, kLargestSystemFile);
    Rules rules = own ? ZoneRules::FromCompiledFile(*own) : nullptr;
    if (rules != nullptr) return rules;
    live::Root const zones{std::string(kZoneFolder)};
    auto const here = zones.ReadFile("/" + name);
    rules = here ? ZoneRules::FromCompiledFile(*here) : nullptr;
    if (rules != nullptr) return rules;
  }
  if (name == "UTC" || name == "GMT") return ZoneRules::Utc();
  return ZoneRules::FromPosixText(name);
}

Fact<TimeZone> Zone::ZoneOfFile() const {
  Fact<std::string> const target = files_.ReadLink(kLocalTimePath);
  std::string name = target ? NameOfZoneFile(*target) : std::string();
  auto const bytes = files_.ReadFile(kLocalTimePath, kLargestSystemFile);
  Rules rules = bytes ? ZoneRules::FromCompiledFile(*bytes) : nullptr;
  if (bytes && rules == nullptr) return Absence{Outcome::kMalformed, kLocalTimePath, {}};
  if (rules == nullptr && !name.empty()) rules = RulesNamed(name);
  if (rules == nullptr) return facts_.Missing(kName);
  if (name.empty()) {
    auto const told = files_.ReadFile("/etc/timezone", kLargestSystemFile);
    if (told) name = live::Trim(*told);
  }
  return TimeZone{name.empty() ? rules->posix_text() : name, rules};
}

}  // namespace machine::capture
