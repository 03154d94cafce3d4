#include "machine/capture/recorded_files.h"

#include "machine/capture/path_walk.h"
#include "machine/capture/recorded_item.h"
#include "machine/capture/values.h"

namespace machine::capture {

RecordedFiles::RecordedFiles(Facts const& facts) : is_partial_(facts.IsPartial(kKey)) {
  if (auto const* items = facts[kKey].As<RecordDictionary>()) {
    for (auto const& [key, value] : items->entries()) items_[BytesOfKey(key)] = &value;
  }
}

std::optional<Field> RecordedFiles::Find(std::string const& path) const {
  auto const found = items_.find(path);
  if (found == items_.end()) return {};
  return Field(found->second, std::string(kDocumentPlace) + kKey + "." + path);
}

bool RecordedFiles::IsKnownToBeMissing(std::string const& path) const {
  SplitPath const place(path);
  std::lock_guard lock(guard_);
  if (kept_folder_ != place.folder) {
    kept_folder_ = place.folder;
    kept_names_.reset();
    auto const folder = Find(place.folder);
    auto const listing = folder ? ListingIn(*folder) : std::nullopt;
    if (listing && *listing && (*listing)->is_whole) {
      kept_names_.emplace((*listing)->names.begin(), (*listing)->names.end());
    }
  }
  return kept_names_ && kept_names_->count(place.name) == 0;
}

}  // namespace machine::capture
