#include "machine/capture/registry_plane.h"

#include <algorithm>
#include <map>

#include "machine/capture/registry_form.h"

namespace machine::capture {
namespace {

constexpr std::size_t kMostEntries = std::size_t{8} << 20;

RecordArray const* ChildrenIn(RecordDictionary const& entry) {
  Record const* const children = entry.Find(kEntryChildren);
  return children == nullptr ? nullptr : children->As<RecordArray>();
}

// A string, or bytes; nothing else. Null where there is none.
std::string const* FindText(RecordDictionary const& entry, char const* key) {
  Record const* const value = entry.Find(key);
  if (value == nullptr) return nullptr;
  if (auto const* text = value->As<std::string>()) return text;
  auto const* const bytes = value->As<RecordBytes>();
  return bytes == nullptr ? nullptr : &bytes->content;
}

bool IsAbove(RecordDictionary const& entry) {
  std::string const* const name = FindText(entry, kEntryName);
  return name == nullptr ? ChildrenIn(entry) != nullptr : *name == kRegistryRoot;
}

std::size_t CountEntries(RecordArray const& list) {
  return static_cast<std::size_t>(std::ranges::count_if(
      list, [](Record const& item) { return item.As<RecordDictionary>() != nullptr; }));
}

bool HasLocation(RecordDictionary const& entry) {
  std::string const* const location = FindText(entry, kEntryLocation);
  return location != nullptr && !location->empty();
}

std::string ComponentOf(RecordDictionary const& entry, std::string const& name) {
  return HasLocation(entry) ? name + "@" + *FindText(entry, kEntryLocation) : name;
}

// Whether a path has that component at its start.
bool StartsWith(std::string_view path, std::string_view component) {
  return path.starts_with(component) &&
         (path.size() == component.size() || path[component.size()] == '/');
}

}  // namespace

Fact<std::string> TextOfEntry(RecordDictionary const& entry, char const* key,
                              std::string const& source) {
  if (std::string const* const text = FindText(entry, key)) return *text;
  Outcome const reason = entry.Find(key) == nullptr ? Outcome::kAbsent : Outcome::kMalformed;
  return Absence{reason, source, key};
}

RecordDictionary PropertiesOfEntry(RecordDictionary const& entry) {
  RecordDictionary properties;
  for (auto const& [key, value] : entry.entries()) {
    if (std::ranges::find(kEntryKeys, key) == std::end(kEntryKeys)) properties.Add(key, value);
  }
  Record const* const own = entry.Find(kEntryProperties);
  auto const* const entries = own == nullptr ? nullptr : own->As<RecordDictionary>();
  if (entries == nullptr) return properties;
  for (auto const& [key, value] : entries->entries()) properties.Add(key, value);
  return properties;
}

// Files have the entry above all planes on top, or entries of the plane alone. Where several lie
// below it, it is itself the plane's first node, so that none of them is out of reach.
RecordArray const* RegistryPlane::ChooseFirst() {
  auto const* const list = document_.As<RecordArray>();
  auto const* const entry = document_.As<RecordDictionary>();
  if (entry != nullptr && !IsAbove(*entry)) {
    entries_.push_back({entry, 0});
    return ChildrenIn(*entry);
  }
  above_ = entry;
  RecordArray const* const top = entry != nullptr ? ChildrenIn(*entry) : list;
  std::size_t const count = top == nullptr ? 0 : CountEntries(*top);
  if (count == 0) return nullptr;
  if (count == 1) {
    auto const first = std::ranges::find_if(
        *top, [](Record const& item) { return item.As<RecordDictionary>() != nullptr; });
    entries_.push_back({first->As<RecordDictionary>(), 0});
    return ChildrenIn(*first->As<RecordDictionary>());
  }
  made_.Add(kEntryName, std::string(kRegistryRoot));
  made_.Add(kEntryClass, std::string("IORegistryEntry"));
  entries_.push_back({entry != nullptr ? entry : &made_, 0});
  return top;
}

void RegistryPlane::AddChildren(Index parent, RecordArray const& children) {
  entries_[parent].first_child = static_cast<Index>(entries_.size());
  for (Record const& child : children) {
    auto const* const facts = child.As<RecordDictionary>();
    if (facts != nullptr && entries_.size() < kMostEntries) entries_.push_back({facts, parent});
  }
  entries_[parent].end_of_children = static_cast<Index>(entries_.size());
}

Fact<std::shared_ptr<RegistryPlane const>> RegistryPlane::Make(std::string name, std::string source,
                                                               Record document) {
  std::shared_ptr<RegistryPlane> plane(
      new RegistryPlane(std::move(name), std::move(source), std::move(document)));
  bool const is_form = plane->document_.As<RecordArray>() != nullptr ||
                       plane->document_.As<RecordDictionary>() != nullptr;
  if (!is_form) return Absence{Outcome::kMalformed, plane->source_, "neither array nor dictionary"};
  RecordArray const* const top = plane->ChooseFirst();
  if (plane->entries_.empty()) return Absence{Outcome::kAbsent, plane->source_, "no entry"};
  if (top != nullptr) plane->AddChildren(0, *top);
  for (Index entry = 1; entry < plane->entries_.size(); ++entry) {
    RecordArray const* const children = ChildrenIn(plane->FactsOf(entry));
    if (children != nullptr) plane->AddChildren(entry, *children);
  }
  return std::shared_ptr<RegistryPlane const>(std::move(plane));
}

std::optional<std::uint64_t> RegistryPlane::RecordedIdentityOf(Index entry) const {
  Record const* const value = FactsOf(entry).Find(kEntryIdentity);
  if (value == nullptr) return {};
  if (auto const* number = value->As<std::uint64_t>()) return *number;
  auto const* const number = value->As<std::int64_t>();
  return number == nullptr ? std::nullopt : std::optional(static_cast<std::uint64_t>(*number));
}

Fact<std::string> RegistryPlane::NameOf(Index entry) const {
  return TextOfEntry(FactsOf(entry), kEntryName, source_);
}

Fact<std::string> RegistryPlane::PathOf(Index entry) const {
  if (entry == 0) return std::string("/");
  std::vector<std::string> components;
  for (; entry != 0; entry = entries_[entry].parent) {
    Fact<std::string> const name = NameOf(entry);
    if (!name) return name;
    components.push_back(ComponentOf(FactsOf(entry), *name));
  }
  std::string path;
  for (auto component = components.rbegin(); component != components.rend(); ++component) {
    path += "/" + *component;
  }
  return path;
}

// An entry, and how much of the path leads to it.
struct RegistryPlane::Step {
  Index entry;
  std::size_t length;
};

// A name may hold "/", so that several children may be meant by the start of the same path: all are
// put down, the one to try first last.
void RegistryPlane::TakeSteps(Step const& from, std::string_view path,
                              std::vector<Step>& steps) const {
  if (path[from.length] != '/') return;
  std::string_view const rest = path.substr(from.length + 1);
  std::map<std::size_t, std::vector<Index>> by_name;  // two of a length are enough
  std::vector<Step> whole;
  auto const [first, end] = ChildrenOf(from.entry);
  for (Index child = first; child != end; ++child) {
    std::string const* const name = FindText(FactsOf(child), kEntryName);
    if (name == nullptr || !rest.starts_with(*name)) continue;
    std::string const component = ComponentOf(FactsOf(child), *name);
    std::size_t const start = from.length + 1;
    if (StartsWith(rest, component)) whole.push_back({child, start + component.size()});
    if (!StartsWith(rest, *name)) continue;
    std::vector<Index>& alike = by_name[start + name->size()];
    if (alike.size() < 2) alike.push_back(child);
  }
  for (auto const& [length, alike] : by_name) {
    if (alike.size() == 1 && HasLocation(FactsOf(alike.front()))) {
      steps.push_back({alike.front(), length});
    }
  }
  steps.insert(steps.end(), whole.rbegin(), whole.rend());
}

std::optional<RegistryPlane::Index> RegistryPlane::Find(std::string_view path) const {
  if (path == "/") return Index{0};
  std::vector<Step> steps;
  if (!path.empty()) TakeSteps({0, 0}, path, steps);
  while (!steps.empty()) {
    Step const step = steps.back();
    steps.pop_back();
    if (step.length == path.size()) return step.entry;
    TakeSteps(step, path, steps);
  }
  return {};
}

std::optional<RegistryPlane::Index> RegistryPlane::FindIdentity(std::uint64_t identity) const {
  std::call_once(are_identities_known_, [this] {
    for (Index entry = 0; entry < entries_.size(); ++entry) {
      if (auto const known = RecordedIdentityOf(entry)) identities_.emplace(*known, entry);
    }
  });
  auto const found = identities_.find(identity);
  return found == identities_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace machine::capture
