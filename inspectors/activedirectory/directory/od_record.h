// One record of the directory as a value of its own. Lists have tens of thousands of them, so that
// all its texts lie in one block.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/export.h"

// Attributes by their directory name ("dsAttrTypeStandard:RecordName") with their values, bytes of
// any kind. Texts are valid as long as the record is there and unchanged.
class GATOTU_API ODRecord {
 public:
  // Keeps its room, for what is read next.
  void Clear();
  // Each name once, in any order; `SortAttributes` follows the last one.
  void AddAttribute(std::string_view name);
  // Behind the values of the attribute that was added last.
  void AddValue(std::string_view value);
  void SortAttributes();

  // In ascending order of the names.
  std::size_t attribute_count() const { return attributes_.size(); }
  std::string_view NameAt(std::size_t index) const { return TextAt(attributes_[index].name); }
  std::vector<std::string_view> ValuesAt(std::size_t index) const;
  // Of several values the one that stands for all: the first. False when there is none.
  bool FirstValueAt(std::size_t index, std::string_view& value) const;

  // The index of an attribute of exactly that name; `attribute_count` when there is none.
  std::size_t Find(std::string_view name) const;

 private:
  struct Place {
    std::size_t start, length;
  };
  struct Attribute {
    Place name;
    std::size_t first_value, value_count;
  };

  Place Keep(std::string_view text);
  std::string_view TextAt(Place place) const {
    return std::string_view(texts_).substr(place.start, place.length);
  }

  std::string texts_;
  std::vector<Place> values_;
  std::vector<Attribute> attributes_;
};
