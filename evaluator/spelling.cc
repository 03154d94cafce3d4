#include "evaluator/spelling.h"

#include <algorithm>
#include <vector>

namespace gatotu {
namespace {

// Comparing is quadratic; nobody mistypes a name of this length.
constexpr std::size_t kLongestName = 80;

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t bound) {
  std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (difference > bound || std::max(a.size(), b.size()) > kLongestName) return bound + 1;
  std::size_t rows[3][kLongestName + 1];
  std::size_t* two_above = rows[0];
  std::size_t* above = rows[1];
  std::size_t* row = rows[2];
  for (std::size_t j = 0; j <= b.size(); ++j) above[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    std::size_t smallest = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t replaced = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
      bool is_swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (is_swapped) row[j] = std::min(row[j], two_above[j - 2] + 1);
      smallest = std::min(smallest, row[j]);
    }
    if (smallest > bound) return bound + 1;
    std::size_t* spare = two_above;
    two_above = above;
    above = row;
    row = spare;
  }
  return above[b.size()];
}

NearestName::NearestName(std::string_view written)
    : written_(written), bound_(written.size() / 3 + (written.size() < 3 ? 1 : 0)) {}

bool NearestName::Offer(std::string_view name) {
  if (name.empty()) return false;
  std::size_t limit = found_.empty() ? bound_ : bound_ - 1;
  if (!found_.empty() && bound_ == 0) return false;
  std::size_t distance = EditDistance(written_, name, limit);
  if (distance > limit) return false;
  found_ = name;
  bound_ = distance;
  return true;
}

}  // namespace gatotu
