// The recorded registry as property lists.
#include <algorithm>
#include <unordered_set>

#include "machine/capture/facts.h"
#include "machine/capture/recording.h"
#include "machine/capture/registry_form.h"
#include "machine/capture/registry_recording.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

Record NumberRecord(std::uint64_t number) {
  if (number > std::uint64_t{INT64_MAX}) return number;
  return static_cast<std::int64_t>(number);
}

// Beside the keys that say what the entry is, where none of them is the same.
void AddProperties(RecordDictionary const& properties, RecordDictionary& record) {
  bool const is_mixed = std::ranges::any_of(properties.entries(), [](auto const& entry) {
    return std::ranges::find(kEntryKeys, entry.first) != std::end(kEntryKeys);
  });
  if (is_mixed) {
    record.Add(kEntryProperties, properties);
    return;
  }
  for (auto const& [key, value] : properties.entries()) record.Add(key, value);
}

template <typename Value>
void AddAbsence(std::optional<Fact<Value>> const& fact, char const* name,
                RecordDictionary& absences) {
  if (!fact) absences.Add(name, RecordOf({Outcome::kAbsent, {}, kNotRecorded}));
  if (fact && !*fact) absences.Add(name, RecordOf(fact->absence()));
}

// What is the entry's own, in its plane or above all of them.
RecordDictionary RecordOfEntry(RecordedEntry const& entry) {
  RecordDictionary record, absences;
  record.Add(kEntryIdentity, NumberRecord(entry.identity));
  if (entry.class_name && *entry.class_name) {
    record.Add(kEntryClass, RecordOfBytes(**entry.class_name));
  }
  if (entry.properties && *entry.properties) AddProperties(**entry.properties, record);
  AddAbsence(entry.class_name, kAbsentClass, absences);
  AddAbsence(entry.properties, kAbsentProperties, absences);
  if (entry.missing_children) absences.Add(kAbsentChildren, RecordOf(*entry.missing_children));
  if (!absences.entries().empty()) record.Add(kEntryAbsent, std::move(absences));
  return record;
}

Record RecordOfTree(RecordedEntry const& entry) {
  RecordDictionary record = RecordOfEntry(entry);
  if (entry.name) record.Add(kEntryName, RecordOfBytes(*entry.name));
  if (!entry.location.empty()) record.Add(kEntryLocation, RecordOfBytes(entry.location));
  RecordArray children;
  std::unordered_set<RecordedEntry const*> seen;
  for (RecordedEntry const* child : entry.order) {
    if (seen.insert(child).second) children.push_back(RecordOfTree(*child));
  }
  for (auto const& [key, child] : entry.children) {
    if (!seen.contains(child.get())) children.push_back(RecordOfTree(*child));
  }
  if (!children.empty()) record.Add(kEntryChildren, std::move(children));
  return record;
}

}  // namespace

void RecordedRegistry::AddTo(RecordedFacts& facts) const {
  std::lock_guard const lock(guard_);
  if (above_) facts.Keep(kRegistryKey, kRegistryRoot, Record(RecordOfEntry(*above_)));
  for (auto const& [plane, why] : missing_planes_) {
    facts.Keep(kRegistryKey, KeyOfBytes(plane), why);
  }
  if (is_full_) facts.Keep(kRegistryKey, Full());
}

std::vector<std::pair<std::string, Record>> RecordedRegistry::Planes() const {
  std::lock_guard const lock(guard_);
  std::vector<std::pair<std::string, Record>> planes;
  for (auto const& [name, first] : planes_) {
    if (first == nullptr) continue;
    RecordDictionary above;
    RecordArray top;
    top.push_back(RecordOfTree(*first));
    above.Add(kEntryName, std::string(kRegistryRoot));
    above.Add(kEntryChildren, std::move(top));
    planes.emplace_back(name, std::move(above));
  }
  return planes;
}

}  // namespace machine::capture
