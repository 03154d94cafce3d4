// What a recorder remembers of the directory. Any thread may add to it.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "machine/capture/record.h"
#include "machine/directory.h"

namespace machine::capture {

class RecordedDirectory {
 public:
  void Keep(DirectoryQuery const& query, Fact<DirectoryRecords> const& answer);

  // Adds the records and the answers; reasons why there was none go to `absent`. Nothing is added
  // when nothing was asked.
  void AddTo(RecordDictionary& document, RecordDictionary& absent) const;

 private:
  // Attributes of one record come together from several answers; the last one counts.
  std::size_t NumberOf(DirectoryRecord const& record, std::set<std::size_t> const& taken);

  mutable std::mutex guard_;
  std::map<std::string, std::vector<DirectoryRecord>> records_;             // by type
  std::map<std::string, std::multimap<std::string, std::size_t>> numbers_;  // by type, then name
  std::map<std::string, Fact<std::vector<std::size_t>>> answers_;
};

}  // namespace machine::capture
