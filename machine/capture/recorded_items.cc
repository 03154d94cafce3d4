#include <algorithm>
#include <cerrno>

#include "machine/capture/path_walk.h"
#include "machine/capture/recording.h"
#include "machine/live/item.h"

namespace machine::capture {

class ItemsAsked final : public ItemsOnTheWay {
 public:
  explicit ItemsAsked(RecordedItems& items) : items_(items) {}

  Fact<ItemKind> KindOf(std::string const& path) override {
    auto const known = items_.items_.find(path);
    if (known != items_.items_.end()) {
      if (known->second.absence) return *known->second.absence;
      if (known->second.known != Known::kNothing) return known->second.item.status.kind;
    }
    Fact<ItemStatus> const status = items_.asked_.Status(path, Links::kKeep);
    if (!status) {
      items_.KeepAbsence(path, status.absence());
      return status.absence();
    }
    Item item;
    item.status = *status;
    items_.KeepItem(path, Known::kStatus, item);
    return status->kind;
  }

  Fact<std::string> TargetOf(std::string const& path) override {
    auto const known = items_.items_.find(path);
    if (known != items_.items_.end() && known->second.target) return *known->second.target;
    Fact<std::string> const target = items_.asked_.ReadLink(path);
    items_.KeepTarget(path, target);
    return target;
  }

 private:
  RecordedItems& items_;
};

RecordedItem* RecordedItems::At(std::string const& place) {
  auto const found = items_.find(place);
  if (found != items_.end()) return &found->second;
  if (items_.size() >= limits_.items) {
    is_full_ = true;
    return nullptr;
  }
  return &items_[place];
}

Fact<std::string> RecordedItems::Walk(std::string const& path, Links links) {
  std::lock_guard lock(guard_);
  Unobserved const unobserved;
  ItemsAsked items(*this);
  Fact<std::string> const place = WalkPath(items, path, links);
  if (place && *place == "/") items.KindOf(*place);
  return place;
}

void RecordedItems::KeepItem(std::string const& place, Known known, Item const& item,
                             bool is_companion) {
  std::lock_guard lock(guard_);
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr) return;
  recorded->absence.reset();
  ItemKind const kind = item.status.kind;
  // There is no more to ask of these.
  bool const is_plain = kind == ItemKind::kLink || kind == ItemKind::kOther;
  if (known == Known::kStatus && is_plain) known = Known::kAll;
  if (known >= recorded->known) {
    recorded->item = item;
    recorded->known = known;
  } else if (known == Known::kStatus) {
    recorded->item.status = item.status;
  }
  if (is_companion) recorded->is_companion = true;
}

void RecordedItems::KeepAbsence(std::string const& place, Absence const& absence) {
  std::lock_guard lock(guard_);
  if (RecordedItem* const recorded = At(place)) recorded->absence = absence;
}

void RecordedItems::KeepTarget(std::string const& place, Fact<std::string> target) {
  std::lock_guard lock(guard_);
  if (RecordedItem* const recorded = At(place)) recorded->target.emplace(std::move(target));
}

bool RecordedItems::HasAll(std::string const& place, RecordedListing const& listing) const {
  return !is_full_ || std::all_of(listing.names.begin(), listing.names.end(), [&](auto& name) {
    return items_.contains(live::PathIn(place, name));
  });
}

// A folder that was left before its end does not take away what is known of it. One whose entries
// did not all fit would pass for a smaller one, so that nothing is told of them.
void RecordedItems::KeepListing(std::string const& place, Fact<RecordedListing> listing) {
  std::lock_guard lock(guard_);
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr) return;
  bool const had_whole = recorded->listing && *recorded->listing && (*recorded->listing)->is_whole;
  bool const is_less = listing && !listing->is_whole;
  if (had_whole && is_less) return;
  if (listing && !HasAll(place, *listing)) {
    std::string const limit = std::to_string(limits_.items);
    listing = Absence{Outcome::kAbsent, place,
                      std::string(kNotRecorded) + ": more than " + limit + " files and folders"};
  }
  recorded->listing.emplace(std::move(listing));
}

void RecordedItems::KeepSpace(std::string const& place, Fact<VolumeSpace> const& space) {
  std::lock_guard lock(guard_);
  if (RecordedItem* const recorded = At(place)) recorded->space.emplace(space);
}

void RecordedItems::DropContent(std::string const& place, Fork fork) {
  auto& contents = ContentsOf(fork);
  auto const kept = contents.find(place);
  if (kept == contents.end()) return;
  content_bytes_ -= kept->second->size();
  contents.erase(kept);
}

std::uint64_t RecordedItems::RoomForContent(std::string const& place, Fork fork) const {
  std::lock_guard lock(guard_);
  Content const kept = ContentOf(place, fork);
  return limits_.content_bytes - content_bytes_ + (kept != nullptr ? kept->size() : 0);
}

void RecordedItems::KeepContent(std::string const& place, Fork fork, Content content) {
  std::lock_guard lock(guard_);
  if (content->size() > RoomForContent(place, fork)) return KeepContentTooLarge(place, fork);
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr) return;
  DropContent(place, fork);
  if (fork == Fork::kData) DropParts(*recorded);
  content_bytes_ += content->size();
  ContentsOf(fork)[place] = std::move(content);
  (fork == Fork::kData ? recorded->content : recorded->resource_fork).emplace(Done());
}

void RecordedItems::KeepContentAbsence(std::string const& place, Fork fork, Absence absence) {
  std::lock_guard lock(guard_);
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr) return;
  DropContent(place, fork);
  (fork == Fork::kData ? recorded->content : recorded->resource_fork).emplace(std::move(absence));
}

void RecordedItems::KeepContentTooLarge(std::string const& place, Fork fork) {
  std::string const limit = std::to_string(limits_.content_bytes);
  KeepContentAbsence(place, fork,
                     {Outcome::kAbsent, place,
                      std::string(kNotRecorded) + ": larger than " + limit + " bytes in all"});
}

void RecordedItems::DropParts(RecordedItem& item) {
  if (item.parts && *item.parts) content_bytes_ -= (*item.parts)->bytes();
  item.parts.reset();
}

bool RecordedItems::KeepPart(std::string const& place, std::uint64_t offset, std::string_view bytes,
                             std::size_t wanted) {
  std::lock_guard lock(guard_);
  if (ContentOf(place, Fork::kData) != nullptr) return true;
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr) return true;
  bool const has_parts = recorded->parts && *recorded->parts;
  std::size_t const had = has_parts ? (*recorded->parts)->bytes() : 0;
  if (bytes.size() > room() || had + bytes.size() > kLargestParts) return false;
  if (!has_parts) recorded->parts.emplace(RecordedParts());
  RecordedParts& parts = recorded->parts->value();
  parts.Keep(offset, bytes, wanted);
  content_bytes_ += parts.bytes() - had;
  return true;
}

bool RecordedItems::HasParts(std::string const& place, std::uint64_t bytes) const {
  std::lock_guard lock(guard_);
  if (!limits_.has_parts || ContentOf(place, Fork::kData) != nullptr) return false;
  auto const found = items_.find(place);
  bool const was_passed = found != items_.end() && found->second.parts && !found->second.content;
  return was_passed || bytes > kLargestParts;
}

void RecordedItems::KeepToTake(std::string const& place) {
  std::lock_guard lock(guard_);
  RecordedItem* const recorded = At(place);
  if (recorded == nullptr || ContentOf(place, Fork::kData) != nullptr) return;
  recorded->is_to_take = true;
  recorded->content.emplace(Done());
}

void RecordedItems::KeepForkInCompanion(std::string const& place) {
  std::lock_guard lock(guard_);
  if (RecordedItem* const recorded = At(place)) recorded->resource_fork.emplace(Done());
}

Content RecordedItems::ContentOf(std::string const& place, Fork fork) const {
  auto const& contents = fork == Fork::kData ? contents_ : resource_forks_;
  auto const found = contents.find(place);
  return found == contents.end() ? nullptr : found->second;
}

}  // namespace machine::capture
