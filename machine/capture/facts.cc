#include "machine/capture/facts.h"

#include <cmath>
#include <optional>

namespace machine::capture {
namespace {

constexpr char kReason[] = "Reason";

std::optional<Outcome> OutcomeNamed(std::string_view name) {
  for (Outcome const outcome :
       {Outcome::kAbsent, Outcome::kNotSupported, Outcome::kPermissionRefused, Outcome::kMalformed,
        Outcome::kTimedOut}) {
    if (NameOf(outcome) == name) return outcome;
  }
  return {};
}

}  // namespace

Field Field::operator[](std::string_view key) const {
  auto const* entries = As<RecordDictionary>();
  char const* joint = path_.ends_with(' ') ? "" : ".";
  return {entries == nullptr ? nullptr : entries->Find(key), path_ + joint + std::string(key)};
}

Field Field::operator[](std::size_t index) const {
  auto const* items = As<RecordArray>();
  bool const exists = items != nullptr && index < items->size();
  return {exists ? &(*items)[index] : nullptr, path_ + "[" + std::to_string(index) + "]"};
}

std::size_t Field::count() const {
  auto const* items = As<RecordArray>();
  return items == nullptr ? 0 : items->size();
}

std::vector<Field> Field::Items() const {
  std::vector<Field> items;
  for (std::size_t i = 0; i < count(); ++i) items.push_back((*this)[i]);
  return items;
}

Absence Field::Malformed(std::string why) const {
  return {Outcome::kMalformed, path_, exists() ? std::move(why) : "missing"};
}

Fact<std::string> Field::Text() const {
  if (auto const* text = As<std::string>()) return *text;
  if (auto const* bytes = As<RecordBytes>()) return bytes->content;
  return Malformed("not a string");
}

Fact<std::int64_t> Field::Integer(std::int64_t least, std::int64_t most) const {
  auto const* number = As<std::int64_t>();
  if (number == nullptr) return Malformed("not an integer");
  if (*number < least || *number > most) return Malformed("out of range");
  return *number;
}

Fact<std::uint64_t> Field::Unsigned(std::uint64_t most) const {
  auto const* large = As<std::uint64_t>();
  auto const* number = As<std::int64_t>();
  if (large == nullptr && number == nullptr) return Malformed("not an integer");
  std::uint64_t const value = large != nullptr ? *large : static_cast<std::uint64_t>(*number);
  if ((large == nullptr && *number < 0) || value > most) return Malformed("out of range");
  return value;
}

Fact<bool> Field::Truth() const {
  if (auto const* truth = As<bool>()) return *truth;
  return Malformed("not a boolean");
}

Fact<RecordDate> Field::Date() const {
  if (auto const* date = As<RecordDate>()) return *date;
  return Malformed("not a date");
}

void AnnounceMissing(Absence const& absence) {
  if (CurrentSourceObserver() == nullptr) return;
  bool const is_lacking = absence.is_not_recorded();
  Announce(is_lacking ? absence.source + " (" + absence.where + ")" : absence.source,
           absence.reason);
}

void AnnounceLeftOut(Absence const& absence) {
  if (CurrentSourceObserver() == nullptr) return;
  Announce(absence.source + " (" + absence.where + ")", absence.reason);
}

Record RecordOf(Absence const& absence) {
  RecordDictionary entries;
  entries.Add(kReason, std::string(NameOf(absence.reason)));
  if (!absence.source.empty()) entries.Add("Source", absence.source);
  if (!absence.where.empty()) entries.Add("Where", absence.where);
  if (absence.error != 0) entries.Add("Error", std::int64_t{absence.error});
  return entries;
}

bool IsAbsence(Field const& field) { return field[kReason].exists(); }

Absence AbsenceIn(Field const& field, Absence whole) {
  bool const is_text = field.As<std::string>() != nullptr;
  if (Fact<std::string> const reason = is_text ? field.Text() : field[kReason].Text()) {
    auto const outcome = OutcomeNamed(*reason);
    whole.reason = outcome.value_or(Outcome::kAbsent);
    whole.where = outcome ? std::string() : *reason;
  }
  if (is_text) return whole;
  if (Fact<std::string> const source = field["Source"].Text()) whole.source = *source;
  if (Fact<std::string> const where = field["Where"].Text()) whole.where = *where;
  constexpr int kLargestError = 4095;  // the kernel's
  if (Fact<std::int64_t> const error = field["Error"].Integer(0, kLargestError)) {
    whole.error = static_cast<int>(*error);
  }
  return whole;
}

Field Facts::operator[](std::string_view key) const {
  return Field(&document_, kDocumentPlace)[key];
}

bool Facts::Knows(std::string const& key) const {
  return (*this)[key].exists() || (*this)["Absent"][key].exists();
}

bool Facts::Knows(std::string const& group, std::string const& key) const {
  Field const whole = (*this)[group];
  bool const is_malformed = whole.exists() && whole.As<RecordDictionary>() == nullptr;
  return is_malformed || whole[key].exists() || (*this)["Absent"][group + "." + key].exists();
}

bool Facts::IsPartial(std::string_view key) const {
  Field const partial = (*this)["Partial"];
  for (std::size_t i = 0; i < partial.count(); ++i) {
    auto const* name = partial[i].As<std::string>();
    if (name != nullptr && *name == key) return true;
  }
  return false;
}

Absence Facts::Missing(std::string const& name) const {
  Absence absence = AbsenceIn((*this)["Absent"][name], {Outcome::kAbsent, name, kNotRecorded});
  AnnounceMissing(absence);
  return absence;
}

Fact<std::string> Facts::Text(std::string const& key) const {
  return Ask(key, [](Field const& field) { return field.Text(); });
}

Fact<std::string> Facts::Text(std::string const& group, std::string const& key) const {
  return Ask(group, key, [](Field const& field) { return field.Text(); });
}

}  // namespace machine::capture
