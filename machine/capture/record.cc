#include "machine/capture/record.h"

#include <algorithm>

namespace machine {
namespace {

bool IsBefore(RecordDictionary::Entry const& entry, std::string_view key) {
  return entry.first < key;
}

}  // namespace

RecordDictionary::RecordDictionary(std::vector<Entry> entries) : entries_(std::move(entries)) {
  auto const by_key = [](Entry const& left, Entry const& right) {
    return left.first < right.first;
  };
  auto const is_same = [](Entry const& left, Entry const& right) {
    return left.first == right.first;
  };
  // From the end on, so that the last of equal ones is the first.
  std::reverse(entries_.begin(), entries_.end());
  std::stable_sort(entries_.begin(), entries_.end(), by_key);
  entries_.erase(std::unique(entries_.begin(), entries_.end(), is_same), entries_.end());
}

Record const* RecordDictionary::Find(std::string_view key) const {
  auto const found = std::lower_bound(entries_.begin(), entries_.end(), key, IsBefore);
  return found == entries_.end() || found->first != key ? nullptr : &found->second;
}

void RecordDictionary::Add(std::string key, Record value) {
  auto const place = std::lower_bound(entries_.begin(), entries_.end(), key, IsBefore);
  if (place != entries_.end() && place->first == key) {
    place->second = std::move(value);
  } else {
    entries_.emplace(place, std::move(key), std::move(value));
  }
}

bool RecordDictionary::operator==(RecordDictionary const& other) const {
  return entries_ == other.entries_;
}

}  // namespace machine
