// What a property list can hold, as plain data. Property lists themselves are read and written by
// the rooms above, which hand their functions to this one.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

class Record;
class RecordDictionary;

struct RecordBytes {
  std::string content;
  bool operator==(RecordBytes const&) const = default;
};

struct RecordDate {
  std::int64_t microseconds_since_1970 = 0;
  bool operator==(RecordDate const&) const = default;
};

using RecordArray = std::vector<Record>;

template <typename T>
concept IsRecordValue = std::same_as<T, bool> || std::same_as<T, std::int64_t> ||
    std::same_as<T, std::uint64_t> || std::same_as<T, double> || std::same_as<T, std::string> ||
    std::same_as<T, RecordBytes> || std::same_as<T, RecordDate> || std::same_as<T, RecordArray> ||
    std::same_as<T, RecordDictionary>;

// Sorted by its keys, each of which is there once.
class MACHINE_API RecordDictionary {
 public:
  using Entry = std::pair<std::string, Record>;

  RecordDictionary() = default;
  // In any order; the last of equal keys counts.
  explicit RecordDictionary(std::vector<Entry> entries);

  // Null when there is no such key.
  Record const* Find(std::string_view key) const;
  // In place of what the key had. Fast when keys come in their order.
  void Add(std::string key, Record value);

  std::vector<Entry> const& entries() const { return entries_; }
  bool operator==(RecordDictionary const& other) const;

 private:
  std::vector<Entry> entries_;
};

// An integer is a `std::int64_t` where it fits, else a `std::uint64_t`. Strings are UTF-8.
using RecordValue = std::variant<bool, std::int64_t, std::uint64_t, double, std::string,
                                 RecordBytes, RecordDate, RecordArray, RecordDictionary>;

class MACHINE_API Record {
 public:
  Record() : value_(RecordDictionary()) {}
  template <IsRecordValue Value>
  Record(Value value) : value_(std::in_place_type<Value>, std::move(value)) {}

  // Null when it holds something else.
  template <typename Value>
  Value const* As() const {
    return std::get_if<Value>(&value_);
  }
  RecordValue const& value() const { return value_; }
  bool operator==(Record const& other) const { return value_ == other.value_; }

 private:
  RecordValue value_;
};

// Understands a property list. `source` names the bytes in an absence, whose `where` is then the
// place and the reason.
using RecordReader = Fact<Record> (*)(std::string_view bytes, std::string const& source);
// The bytes of a property list.
using RecordWriter = Fact<std::string> (*)(Record const& record);

}  // namespace machine
