#include "frameworks/DirectoryService/references.h"

#include "machine/never_destroyed.h"

namespace directory_service {

References& References::Shared() {
  static machine::NeverDestroyed<References> references;
  return *references;
}

UInt32 References::NewNumber() {
  std::lock_guard lock(guard_);
  return ++last_;
}

UInt32 References::ParentOf(Entry const& entry) {
  if (auto const* node = std::get_if<OpenNode>(&entry)) return node->service;
  if (auto const* list = std::get_if<OpenAttributeList>(&entry)) return list->node;
  if (auto const* list = std::get_if<OpenValueList>(&entry)) return list->node;
  return 0;
}

// What is opened later has the higher number, so one pass finds the lists of a service's nodes too.
void References::Remove(UInt32 number) {
  std::lock_guard lock(guard_);
  open_.erase(number);
  for (auto at = open_.upper_bound(number); at != open_.end();) {
    UInt32 const parent = ParentOf(*at->second);
    bool const is_orphan = parent != 0 && !open_.contains(parent);
    at = is_orphan ? open_.erase(at) : std::next(at);
  }
}

std::shared_ptr<OpenNode> References::NodeOfContinued(UInt32 number) const {
  std::lock_guard lock(guard_);
  for (auto const& [key, entry] : open_) {
    auto* const node = std::get_if<OpenNode>(&*entry);
    if (node != nullptr && node->continued.contains(number)) return {entry, node};
  }
  return nullptr;
}

std::size_t References::count() const {
  std::lock_guard lock(guard_);
  return open_.size();
}

}  // namespace directory_service

UInt32 DirectoryServiceOpenReferenceCount() {
  return static_cast<UInt32>(directory_service::References::Shared().count());
}
