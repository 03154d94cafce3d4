#include "frameworks/DirectoryService/references.h"

#include <algorithm>

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

UInt32 References::ParentOf(Reference const& reference) {
  if (auto const* node = std::get_if<OpenNode>(&reference.opened)) return (*node)->service;
  if (auto const* list = std::get_if<OpenAttributeList>(&reference.opened)) return list->node;
  if (auto const* list = std::get_if<OpenValueList>(&reference.opened)) return list->node;
  return 0;
}

References::Reference const* References::Locate(UInt32 number) const {
  if (!open_.empty() && open_.back().number == number) return &open_.back();
  auto const found = std::ranges::lower_bound(open_, number, {}, &Reference::number);
  return found == open_.end() || found->number != number ? nullptr : &*found;
}

// What is opened later has the higher number, so one pass finds the lists of a service's nodes too.
References::Reference References::Remove(Reference const& reference) {
  auto kept_end = open_.begin() + (&reference - open_.data());
  Reference removed = std::move(*kept_end);
  for (auto at = kept_end + 1; at != open_.end(); ++at) {
    UInt32 const parent = ParentOf(*at);
    bool const is_orphan =
        parent != 0 &&
        !std::ranges::binary_search(open_.begin(), kept_end, parent, {}, &Reference::number);
    if (!is_orphan) *kept_end++ = std::move(*at);
  }
  open_.erase(kept_end, open_.end());
  return removed;
}

OpenNode References::NodeOfContinued(UInt32 number) const {
  std::lock_guard lock(guard_);
  for (Reference const& reference : open_) {
    auto const* const node = std::get_if<OpenNode>(&reference.opened);
    if (node != nullptr && (*node)->continued.contains(number)) return *node;
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
