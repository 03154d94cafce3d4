#include "machine/capture/taken_files.h"

#include "machine/live/item.h"

namespace machine::capture {

void TakenFiles::Refused(std::string const& path, Absence const& why) {
  refused_.push_back(why);
  refused_.back().source = path;
}

void TakenFiles::Matched(std::string const& path) {
  Fact<Item> const item = files_.Describe(path, Links::kKeep);
  if (!item && item.absence().reason != Outcome::kAbsent) Refused(path, item.absence());
  Fact<std::string> const place = items_.Walk(path, Links::kKeep);
  if (!item || !place) return;
  ++count_;
  if (item->status.kind == ItemKind::kLink) files_.ReadLink(path);
  if (item->status.kind != ItemKind::kFile) return;
  items_.KeepToTake(*place);
  if (item->resource_bytes != 0) TakeResourceFork(*place);
}

// A companion may be large and goes along as the file that it is. What an attribute holds is small.
void TakenFiles::TakeResourceFork(std::string const& place) {
  std::string const companion = live::CompanionPath(place);
  Fact<Item> const item = files_.Describe(companion, Links::kKeep);
  if (item && item->status.kind == ItemKind::kFile) {
    items_.KeepToTake(companion);
    items_.KeepForkInCompanion(place);
  } else {
    files_.OpenFork(place, Fork::kResource, Access::kRead);
  }
}

}  // namespace machine::capture
