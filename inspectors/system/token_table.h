// A value by its name, from a constant array that is sorted by name.
#pragma once

#include <cstddef>

#include "portable/const_c_string.h"
#include "portable/const_data.h"

template <class T>
struct ConstArrayOf {
  T const* start;
  T const* end;

  std::size_t Length() const { return static_cast<std::size_t>(end - start); }
};

template <class V>
struct TokenTableAssociation {
  char const* name;
  V value;
};

// A view; the rows outlive it.
template <class V>
class TokenTable {
 public:
  // The rows are in ascending byte order of their names and end with one whose name is null.
  explicit TokenTable(TokenTableAssociation<V> const* rows) : rows_{rows, rows} {
    while (rows_.end->name != nullptr) ++rows_.end;
  }

  std::size_t Length() const { return rows_.Length(); }

  // The value of the row with just this name, letter case included; null where there is none.
  V const* LookFor(ConstData key) const {
    std::size_t low = 0;
    std::size_t high = rows_.Length();
    while (low < high) {
      std::size_t const middle = (low + high) / 2;
      TokenTableAssociation<V> const& row = rows_.start[middle];
      int const order = Compare(ConstCString(row.name), key);
      if (order == 0) return &row.value;
      if (order > 0) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    return nullptr;
  }

 private:
  ConstArrayOf<TokenTableAssociation<V>> rows_;
};
