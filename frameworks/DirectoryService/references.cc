#include "frameworks/DirectoryService/references.h"

#include <algorithm>

#include "machine/never_destroyed.h"

namespace directory_service {

References& References::Shared() {
  static machine::NeverDestroyed<References> references;
  return *references;
}

References::Reference const* References::LocateFar(UInt32 number) const {
  Reference const* const end = open_.data() + open_.size();
  Reference const* const found =
      std::ranges::lower_bound(open_.data() + closed_count_, end, number, {}, &Reference::number);
  return found == end || found->number != number ? nullptr : found;
}

UInt32 References::NextNumber() {
  do {
    ++last_;
  } while (last_ == 0 || Locate(last_) != nullptr);
  return last_;
}

void References::InsertFar(Reference reference) {
  auto const place =
      std::ranges::lower_bound(open_.begin() + static_cast<std::ptrdiff_t>(closed_count_),
                               open_.end(), reference.number, {}, &Reference::number);
  open_.insert(place, std::move(reference));
}

// Moves the fewer of those before and behind it.
void References::EraseFar(Reference& reference) {
  Reference* const begin = open_.data() + closed_count_;
  Reference* const end = open_.data() + open_.size();
  if (end - &reference <= &reference - begin) {
    std::move(&reference + 1, end, &reference);
    open_.pop_back();
    return;
  }
  std::move_backward(begin, &reference, &reference + 1);
  ++closed_count_;
  if (closed_count_ <= open_.size() / 2) return;
  open_.erase(open_.begin(), open_.begin() + static_cast<std::ptrdiff_t>(closed_count_));
  closed_count_ = 0;
}

void References::Remove(Reference& reference, Closed& closed) {
  UInt32 const number = reference.number;
  UInt32 children = reference.child_count;
  Leave(reference.parent);
  bool const holds_something = std::holds_alternative<OpenNode>(reference.opened) ||
                               std::holds_alternative<OpenSearch>(reference.opened);
  if (holds_something) closed.push_back(std::move(reference));
  Erase(reference);
  for (; children > 0; --children) {
    auto const child = std::ranges::find(open_.begin() + static_cast<std::ptrdiff_t>(closed_count_),
                                         open_.end(), number, &Reference::parent);
    Remove(*child, closed);
  }
}

std::size_t References::count() const {
  std::lock_guard lock(guard_);
  return open_.size() - closed_count_;
}

void References::SetLastNumber(UInt32 number) {
  std::lock_guard lock(guard_);
  last_ = number;
}

}  // namespace directory_service

UInt32 DirectoryServiceOpenReferenceCount() {
  return static_cast<UInt32>(directory_service::References::Shared().count());
}

void DirectoryServiceSetLastReference(UInt32 number) {
  directory_service::References::Shared().SetLastNumber(number);
}
