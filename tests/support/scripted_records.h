// A directory that a test scripts: the records it has, or how it fails.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/directory_records.h"

class ScriptedRecords final : public machine::DirectorySource {
 public:
  machine::Fact<machine::DirectoryRecords> Find(
      machine::DirectoryQuery const& query) const override {
    last = query;
    ++calls;
    if (failure) return machine::Absence{*failure, "script", {}};
    if (answers_as_is) return records;
    machine::DirectoryAnswer answer(query);
    for (machine::DirectoryRecord const& record : records) {
      if (Matches(record, query)) answer.Offer(record);
    }
    return answer.Take();
  }

  // A user with groups.
  void Add(std::string name, std::vector<std::string> sids) {
    Add(std::string(machine::kUserRecords), std::move(name),
        {{"dsAttrTypeNative:tokenGroups", std::move(sids)}});
  }
  void Add(std::string type, std::string name,
           std::vector<machine::DirectoryAttribute> attributes) {
    attributes.insert(attributes.begin(), {std::string(machine::kRecordName), {name}});
    records.push_back({std::move(type), std::move(name), {}, std::move(attributes)});
  }

  std::vector<machine::DirectoryRecord> records;
  std::optional<machine::Outcome> failure;
  // To every question with all records, whatever it is.
  bool answers_as_is = false;
  mutable machine::DirectoryQuery last;
  mutable int calls = 0;
};
