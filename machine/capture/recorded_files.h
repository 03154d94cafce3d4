// The items of a capture that `machine.plist` tells of, by their paths without links.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "machine/capture/facts.h"

namespace machine::capture {

class RecordedFiles {
 public:
  explicit RecordedFiles(Facts const& facts);

  bool is_empty() const { return items_.empty() && !is_partial_; }
  // Whether items that are not here are not known, instead of being as the copy has them.
  bool is_partial() const { return is_partial_; }
  // What there is of an item.
  std::optional<Field> Find(std::string const& path) const;
  // Whether the folder that would hold the item was listed to its end, and had no such name.
  bool IsKnownToBeMissing(std::string const& path) const;

 private:
  static constexpr char kKey[] = "Files";
  bool const is_partial_;
  std::unordered_map<std::string, Record const*> items_;

  // The names of the folder that was asked for last, where it was listed to its end.
  mutable std::mutex guard_;
  mutable std::string kept_folder_;
  mutable std::optional<std::unordered_set<std::string>> kept_names_;
};

}  // namespace machine::capture
