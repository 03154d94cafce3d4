#include "machine/capture/registry_recording.h"

#include <algorithm>

#include "machine/capture/facts.h"
#include "machine/capture/recording.h"
#include "machine/capture/registry_form.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

std::size_t BytesOf(RecordDictionary const& entries);

std::size_t BytesOf(Record const& record) {
  constexpr std::size_t kScalar = 16;
  if (auto const* text = record.As<std::string>()) return kScalar + text->size();
  if (auto const* bytes = record.As<RecordBytes>()) return kScalar + bytes->content.size();
  if (auto const* entries = record.As<RecordDictionary>()) return kScalar + BytesOf(*entries);
  std::size_t size = kScalar;
  if (auto const* items = record.As<RecordArray>()) {
    for (Record const& item : *items) size += BytesOf(item);
  }
  return size;
}

std::size_t BytesOf(RecordDictionary const& entries) {
  std::size_t size = 0;
  for (auto const& [key, value] : entries.entries()) size += key.size() + BytesOf(value);
  return size;
}

// The last component of a path below its parent's.
std::string_view ComponentOf(std::string_view path, std::string_view parent) {
  std::size_t const start = parent == "/" ? 1 : parent.size() + 1;
  return path.size() > start ? path.substr(start) : std::string_view();
}

RecordedEntry MakeEntry(std::string_view plane, RegistryNode const& node, std::string path,
                        RecordedEntry const* parent) {
  RecordedEntry entry;
  entry.identity = node.Identity();
  entry.name = node.NameIn(plane);
  entry.path = std::move(path);
  entry.missing_children = {Outcome::kAbsent, {}, kNotRecorded};
  if (parent == nullptr) return entry;
  entry.depth = parent->depth + 1;
  std::string_view const component = ComponentOf(entry.path, parent->path);
  if (entry.name && component.starts_with(*entry.name + "@")) {
    entry.location = component.substr(entry.name->size() + 1);
  }
  return entry;
}

}  // namespace

bool RecordedRegistry::IsFull() const {
  std::lock_guard const lock(guard_);
  return is_full_;
}

Absence RecordedRegistry::Full() const {
  return {Outcome::kAbsent,
          {},
          std::string(kNotRecorded) + ": more than " + std::to_string(limits_.registry_entries) +
              " entries, " + std::to_string(limits_.registry_bytes) + " bytes or " +
              std::to_string(kMostRegistryDepth) + " levels"};
}

bool RecordedRegistry::Spend(std::size_t bytes) {
  if (bytes > limits_.registry_bytes - bytes_) is_full_ = true;
  if (!is_full_) bytes_ += bytes;
  return !is_full_;
}

RecordedEntry& RecordedRegistry::Above(std::uint64_t identity) {
  std::lock_guard const lock(guard_);
  if (!above_) above_.emplace();
  above_->identity = identity;
  return *above_;
}

RecordedEntry* RecordedRegistry::Add(std::unique_ptr<RecordedEntry>& place, RecordedEntry entry) {
  if (place != nullptr) return place.get();
  if (entries_ == limits_.registry_entries) is_full_ = true;
  if (is_full_ || entry.depth > kMostRegistryDepth || !Spend(2 * entry.path.size())) return nullptr;
  ++entries_;
  place = std::make_unique<RecordedEntry>(std::move(entry));
  return place.get();
}

RecordedEntry* RecordedRegistry::FirstOf(RegistrySource const& asked, std::string_view plane) {
  Fact<SharedRegistryNode> const first = asked.NodeAt(plane, "/");
  if (!first) return nullptr;
  RecordedEntry entry = MakeEntry(plane, **first, "/", nullptr);
  std::lock_guard const lock(guard_);
  return Add(planes_[std::string(plane)], std::move(entry));
}

RecordedEntry* RecordedRegistry::AddChild(RecordedEntry& parent, std::string_view plane,
                                          RegistryNode const& node) {
  Fact<std::string> path = node.PathIn(plane);
  RecordedEntry entry = MakeEntry(plane, node, path ? *std::move(path) : std::string(), &parent);
  std::string component(ComponentOf(entry.path, parent.path));
  std::lock_guard const lock(guard_);
  Key key(entry.identity, std::move(component));
  auto const known = parent.children.find(key);
  if (known != parent.children.end()) return known->second.get();
  std::unique_ptr<RecordedEntry> child;
  if (Add(child, std::move(entry)) == nullptr) {
    parent.is_cut = true;
    parent.missing_children = Full();
    return nullptr;
  }
  return parent.children.emplace(std::move(key), std::move(child)).first->second.get();
}

// The parents are found from the top: a "/" in the path may belong to a name.
RecordedEntry* RecordedRegistry::Place(RegistrySource const& asked, std::string_view plane,
                                       RegistryNode const& node) {
  Fact<std::string> const path = node.PathIn(plane);
  RecordedEntry* place = path ? FirstOf(asked, plane) : nullptr;
  if (place == nullptr || *path == "/") return place;
  for (std::size_t end = path->find('/', 1); end != std::string::npos && place != nullptr;
       end = path->find('/', end + 1)) {
    std::string const above = path->substr(0, end);
    Fact<SharedRegistryNode> const parent = asked.NodeAt(plane, above);
    Fact<std::string> const whole = parent ? (*parent)->PathIn(plane) : parent.absence();
    if (whole && *whole == above) place = AddChild(*place, plane, **parent);
  }
  return place == nullptr ? nullptr : AddChild(*place, plane, node);
}

void RecordedRegistry::Keep(RecordedEntry& entry, Fact<std::string> const& class_name) {
  std::lock_guard const lock(guard_);
  if (Spend(class_name ? class_name->size() : 0)) entry.class_name = class_name;
}

void RecordedRegistry::Keep(RecordedEntry& entry, Fact<RecordDictionary> const& properties) {
  std::lock_guard const lock(guard_);
  bool const is_new = !entry.properties || !*entry.properties;
  if (Spend(properties && is_new ? BytesOf(*properties) : 0)) entry.properties = properties;
}

void RecordedRegistry::KeepOrder(RecordedEntry& parent, std::size_t at, RecordedEntry& child) {
  std::lock_guard const lock(guard_);
  if (at < parent.order.size()) parent.order[at] = &child;
  if (at == parent.order.size()) parent.order.push_back(&child);
}

void RecordedRegistry::KeepMissingPlane(std::string_view plane, Absence const& why) {
  std::lock_guard const lock(guard_);
  missing_planes_.insert_or_assign(std::string(plane), why);
}

void RecordedRegistry::KeepEnd(RecordedEntry& parent, std::optional<Absence> why) {
  std::lock_guard const lock(guard_);
  if (!parent.is_cut) parent.missing_children = std::move(why);
}

}  // namespace machine::capture
