#include "machine/capture/record.h"

#include <algorithm>

namespace machine {

Record const* RecordDictionary::Find(std::string_view key) const {
  auto const found = std::find_if(entries_.rbegin(), entries_.rend(),
                                  [key](Entry const& entry) { return entry.first == key; });
  return found == entries_.rend() ? nullptr : &found->second;
}

void RecordDictionary::Add(std::string key, Record value) {
  entries_.emplace_back(std::move(key), std::move(value));
}

bool RecordDictionary::operator==(RecordDictionary const& other) const {
  return entries_ == other.entries_;
}

}  // namespace machine
