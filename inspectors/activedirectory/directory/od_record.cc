#include "inspectors/activedirectory/directory/od_record.h"

#include <algorithm>

void ODRecord::Clear() {
  texts_.clear();
  values_.clear();
  attributes_.clear();
}

ODRecord::Place ODRecord::Keep(std::string_view text) {
  Place const place = {texts_.size(), text.size()};
  texts_.append(text);
  return place;
}

void ODRecord::AddAttribute(std::string_view name) {
  attributes_.push_back({Keep(name), values_.size(), 0});
}

void ODRecord::AddValue(std::string_view value) {
  values_.push_back(Keep(value));
  ++attributes_.back().value_count;
}

void ODRecord::SortAttributes() {
  std::ranges::sort(attributes_, {},
                    [this](Attribute const& attribute) { return TextAt(attribute.name); });
}

std::vector<std::string_view> ODRecord::ValuesAt(std::size_t index) const {
  auto const [name, first, count] = attributes_[index];
  std::vector<std::string_view> values;
  for (std::size_t i = first; i < first + count; ++i) values.push_back(TextAt(values_[i]));
  return values;
}

bool ODRecord::FirstValueAt(std::size_t index, std::string_view& value) const {
  Attribute const& attribute = attributes_[index];
  if (attribute.value_count == 0) return false;
  value = TextAt(values_[attribute.first_value]);
  return true;
}

std::size_t ODRecord::Find(std::string_view name) const {
  auto const found = std::ranges::lower_bound(
      attributes_, name, {}, [this](Attribute const& attribute) { return TextAt(attribute.name); });
  if (found == attributes_.end() || TextAt(found->name) != name) return attributes_.size();
  return static_cast<std::size_t>(found - attributes_.begin());
}
