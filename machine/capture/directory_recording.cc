#include "machine/capture/directory_recording.h"

#include <algorithm>

#include "machine/capture/directory.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

void Merge(DirectoryRecord const& from, DirectoryRecord& to) {
  for (DirectoryAttribute const& attribute : from.attributes) {
    std::erase_if(to.attributes, [&attribute](DirectoryAttribute const& known) {
      return known.name == attribute.name;
    });
    to.attributes.push_back(attribute);
  }
}

Record RecordOf(DirectoryRecord const& record) {
  RecordDictionary attributes;
  for (DirectoryAttribute const& attribute : record.attributes) {
    attributes.Add(attribute.name, RecordOfNames(attribute.values));
  }
  return attributes;
}

Record RecordOf(std::vector<std::size_t> const& numbers) {
  RecordArray array;
  for (std::size_t const number : numbers) array.push_back(RecordOfNumber(number));
  return array;
}

}  // namespace

// Of records with one name and node each stands for itself within an answer.
std::size_t RecordedDirectory::NumberOf(DirectoryRecord const& record,
                                        std::set<std::size_t> const& taken) {
  auto& known = records_[record.type];
  auto& numbers = numbers_[record.type];
  auto const [first, last] = numbers.equal_range(record.name);
  for (auto at = first; at != last; ++at) {
    bool const is_it = known[at->second].node == record.node && !taken.contains(at->second);
    if (is_it) return at->second;
  }
  numbers.emplace(record.name, known.size());
  DirectoryRecord& added = known.emplace_back(record);
  added.attributes.clear();
  added.Add(kRecordName, record.name);
  added.Add(kRecordNode, record.node);
  return known.size() - 1;
}

void RecordedDirectory::Keep(DirectoryQuery const& query, Fact<DirectoryRecords> const& answer) {
  std::lock_guard lock(guard_);
  std::string const key = KeyOfQuery(query);
  if (!answer) {
    answers_.insert_or_assign(key, answer.absence());
    return;
  }
  std::vector<std::size_t> numbers;
  std::set<std::size_t> taken;
  for (DirectoryRecord const& record : *answer) {
    std::size_t const number = NumberOf(record, taken);
    Merge(record, records_[record.type][number]);
    numbers.push_back(number);
    taken.insert(number);
  }
  answers_.insert_or_assign(key, std::move(numbers));
}

void RecordedDirectory::AddTo(RecordDictionary& document, RecordDictionary& absent) const {
  std::lock_guard lock(guard_);
  if (answers_.empty()) return;
  RecordDictionary directory, answers;
  for (auto const& [type, records] : records_) {
    RecordArray array;
    for (DirectoryRecord const& record : records) array.push_back(RecordOf(record));
    directory.Add(type, std::move(array));
  }
  for (auto const& [key, answer] : answers_) {
    if (answer) answers.Add(key, RecordOf(*answer));
    if (!answer)
      absent.Add(std::string(kDirectoryAnswers) + "." + key, capture::RecordOf(answer.absence()));
  }
  document.Add(kDirectory, std::move(directory));
  document.Add(kDirectoryAnswers, std::move(answers));
}

}  // namespace machine::capture
