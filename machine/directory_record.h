// A record of the directory, and the many that an answer may have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "machine/export.h"

namespace machine {

struct DirectoryAttribute {
  std::string name;
  std::vector<std::string> values;  // bytes of any kind, at least one value
};

struct DirectoryRecord {
  std::string type, name, node;
  std::vector<DirectoryAttribute> attributes;  // each name once

  // Letter case does not count. Null when there is no such attribute.
  MACHINE_API DirectoryAttribute const* Find(std::string_view attribute) const;
  // Behind the values that the attribute has.
  MACHINE_API void Add(std::string_view attribute, std::string value);
};

// The same without owning anything: each attribute has as many of the values as it says, one after
// another.
struct DirectoryAttributeView {
  std::string_view name;
  std::size_t value_count;

  bool operator==(DirectoryAttributeView const&) const = default;
};

// What many records have in common, for good.
struct DirectoryRecordForm {
  std::string_view type, node;
  std::span<DirectoryAttributeView const> attributes;
};

struct DirectoryRecordView {
  std::string_view type, name, node;
  std::span<DirectoryAttributeView const> attributes;
  std::span<std::string_view const> values;
  // Where it is known: the one that type, node and attributes are of.
  DirectoryRecordForm const* form = nullptr;
};

// What a view looks at besides the texts. Taken for one record after another, it needs no new
// memory.
struct DirectoryRecordParts {
  std::vector<DirectoryAttributeView> attributes;
  std::vector<std::string_view> values;

  void Clear() {
    attributes.clear();
    values.clear();
  }
  void Add(std::string_view attribute, std::string_view value) {
    attributes.push_back({attribute, 1});
    values.push_back(value);
  }
  void Add(std::string_view attribute, std::span<std::string_view const> attribute_values) {
    attributes.push_back({attribute, attribute_values.size()});
    values.insert(values.end(), attribute_values.begin(), attribute_values.end());
  }
};

// A view of what the record has, by means of the parts.
MACHINE_API DirectoryRecordView ViewOf(DirectoryRecord const& record, DirectoryRecordParts& parts);

// Records in the order of an answer. A machine may have tens of thousands of accounts, so that
// their texts lie in a few blocks, and what records of one kind have in common is kept once.
class MACHINE_API DirectoryRecords {
 public:
  DirectoryRecords() = default;
  DirectoryRecords(std::vector<DirectoryRecord> const& records);
  DirectoryRecords(DirectoryRecords&&) = default;
  DirectoryRecords& operator=(DirectoryRecords&&) = default;

  void Add(DirectoryRecord const& record);
  void Add(DirectoryRecordView const& record);

  std::size_t size() const { return records_.size(); }
  bool empty() const { return records_.empty(); }
  std::string_view NameAt(std::size_t index) const;
  // Gives back the memory of records that nobody asks for any more, those before the index, as far
  // as a block has no other.
  void Forget(std::size_t index);
  // Valid as long as this object and `values` are there and unchanged. Records whose types are at
  // the same place have node and attributes in common, as most like records do.
  DirectoryRecordView ViewAt(std::size_t index, std::vector<std::string_view>& values) const;
  DirectoryRecord operator[](std::size_t index) const;

  // Makes a record at each step.
  class Iterator;
  Iterator begin() const;
  Iterator end() const;

 private:
  // All but the name and the values.
  struct Kind {
    DirectoryRecordForm const* form;
    std::string texts, type, node;
    std::vector<DirectoryAttributeView> attributes;  // their names are in the texts
  };

  static bool IsOfKind(DirectoryRecordView const& record, Kind const& kind);
  std::uint32_t KindOf(DirectoryRecordView const& record);
  // For so many bytes that the caller puts there.
  char* Reserve(std::size_t size);

  struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t used = 0, size = 0;
  };
  std::deque<Kind> kinds_;
  std::deque<Block> blocks_;
  std::deque<std::string_view> records_;
  std::vector<std::uint32_t> marks_;  // of the values of the record that is added
};

class DirectoryRecords::Iterator {
 public:
  using difference_type = std::ptrdiff_t;
  using value_type = DirectoryRecord;

  Iterator() = default;
  Iterator(DirectoryRecords const& records, std::size_t index)
      : records_(&records), index_(index) {}
  DirectoryRecord operator*() const { return (*records_)[index_]; }
  Iterator& operator++() {
    ++index_;
    return *this;
  }
  Iterator operator++(int) { return {*records_, index_++}; }
  bool operator==(Iterator const&) const = default;

 private:
  DirectoryRecords const* records_ = nullptr;
  std::size_t index_ = 0;
};

inline DirectoryRecords::Iterator DirectoryRecords::begin() const { return {*this, 0}; }
inline DirectoryRecords::Iterator DirectoryRecords::end() const { return {*this, size()}; }

}  // namespace machine
