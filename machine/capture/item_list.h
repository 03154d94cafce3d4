// The items of an array in a capture's document, as far as they can be understood.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "machine/capture/facts.h"

namespace machine::capture {

// Who walks over a list may be told at each step what is not on it.
inline constexpr std::size_t kMostToldLeftOut = 100;

// `read` makes a fact of an item; what is malformed is left out, and `left_out` has the first
// reasons. Nothing but malformed items is a failure, with the first of them.
template <typename Read>
auto ItemsIn(Field const& field, Read read, std::vector<Absence>& left_out)
    -> Fact<std::vector<std::remove_cvref_t<decltype(read(field).value())>>> {
  std::vector<std::remove_cvref_t<decltype(read(field).value())>> items;
  if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
  for (std::size_t i = 0; i < field.count(); ++i) {
    auto item = read(field[i]);
    if (!item && left_out.size() < kMostToldLeftOut) left_out.push_back(item.absence());
    if (item) items.push_back(std::move(item).value());
  }
  if (items.empty() && !left_out.empty()) return left_out.front();
  return items;
}

}  // namespace machine::capture
