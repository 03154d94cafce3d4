// One record of the directory, read from the answer that it came with when it is asked something:
// lists have tens of thousands of records, and of most of them little is asked.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspectors/activedirectory/directory/answered_records.h"

// An attribute by its directory name ("dsAttrTypeStandard:RecordName") with the value that stands
// for all: the first one; empty when it has none.
struct ODAttribute {
  std::string name, value;  // bytes of any kind
};

// Copies share the answer, which stays as it was. What is asked may throw the exceptions of the
// directory's calls.
class GATOTU_API ODRecord {
 public:
  // `index` counts from 1.
  ODRecord(std::shared_ptr<AnsweredRecords const> answer, UInt32 index)
      : answer_(std::move(answer)), index_(index) {}

  // In ascending order of their names.
  std::vector<ODAttribute> Attributes() const;
  // Of the attribute of exactly that name. False when there is none, or one without values.
  bool FirstValue(std::string_view attribute, std::string& value) const {
    return answer_->FirstValue(index_, attribute, value);
  }

 private:
  std::shared_ptr<AnsweredRecords const> answer_;
  UInt32 index_;
};

// Records in the order of their answers.
class GATOTU_API ODRecordList {
 public:
  // A place in a list that goes on from record to record.
  struct Place {
    std::size_t answer = 0;
    UInt32 index = 0;  // of the record before; 0 before the first
  };

  void Add(AnsweredRecords answer);
  std::size_t size() const { return size_; }
  // The record behind the place, which becomes its place; nothing at the end.
  std::optional<ODRecord> Next(Place& place) const;

 private:
  std::vector<std::shared_ptr<AnsweredRecords const>> answers_;  // none without records
  std::size_t size_ = 0;
};
