#include "frameworks/CoreServices/folder_table.h"

#include <cstring>

#include "machine/never_destroyed.h"

FolderTable& FolderTable::Shared() {
  static machine::NeverDestroyed<FolderTable> table;
  return *table;
}

FolderTable::FolderTable() { places_.push_back({fsRtParID, std::string()}); }

std::string FolderTable::KeyOf(UInt32 parent, std::string_view name) {
  std::string key(sizeof parent + name.size(), '\0');
  std::memcpy(key.data(), &parent, sizeof parent);
  name.copy(key.data() + sizeof parent, name.size());
  return key;
}

UInt32 FolderTable::NumberOf(UInt32 parent, std::string_view name) {
  if (name.empty()) return fsRtDirID;
  std::lock_guard lock(guard_);
  auto const next = static_cast<UInt32>(fsRtDirID + places_.size());
  auto const [found, is_new] = numbers_.try_emplace(KeyOf(parent, name), next);
  if (is_new) places_.push_back({parent, std::string(name)});
  return found->second;
}

UInt32 FolderTable::NumberOfPath(std::string_view path) {
  UInt32 number = fsRtDirID;
  while (!path.empty()) {
    std::string_view const name = path.substr(0, path.find('/'));
    if (!name.empty()) number = NumberOf(number, name);
    path.remove_prefix(std::min(path.size(), name.size() + 1));
  }
  return number;
}

FolderTable::Place const* FolderTable::Get(UInt32 number) const {
  bool const is_given = number >= fsRtDirID && number - fsRtDirID < places_.size();
  return is_given ? &places_[number - fsRtDirID] : nullptr;
}

std::optional<FolderTable::Place> FolderTable::Find(UInt32 number) const {
  std::lock_guard lock(guard_);
  Place const* place = Get(number);
  if (place == nullptr) return {};
  return *place;
}

std::optional<std::string> FolderTable::PathOf(UInt32 number) const {
  std::lock_guard lock(guard_);
  std::vector<Place const*> way;
  // A folder moved below itself by a mistaken table would be walked for ever.
  for (UInt32 at = number; at != fsRtDirID; at = way.back()->parent) {
    Place const* place = Get(at);
    if (place == nullptr || way.size() > places_.size()) return {};
    way.push_back(place);
  }
  std::string path = "/";
  for (auto place = way.rbegin(); place != way.rend(); ++place) {
    path = ItemPath(std::move(path), (*place)->name);
  }
  return path;
}

// What was known in the new place before is gone, and its number leads to what is there now.
void FolderTable::Move(Place const& from, Place const& to) {
  std::lock_guard lock(guard_);
  auto const found = numbers_.find(KeyOf(from.parent, from.name));
  if (found == numbers_.end()) return;
  UInt32 const number = found->second;
  numbers_.erase(found);
  numbers_[KeyOf(to.parent, to.name)] = number;
  places_[number - fsRtDirID] = to;
}

std::string ItemPath(std::string folder, std::string_view name) {
  if (!folder.ends_with('/')) folder += '/';
  return folder.append(name);
}
