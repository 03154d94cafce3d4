#include "frameworks/CoreFoundation/container_equality.h"

#include <set>
#include <utility>
#include <vector>

#include "frameworks/CoreFoundation/array_object.h"
#include "frameworks/CoreFoundation/dictionary_object.h"

namespace {

// Pairs of containers that must be equal for the whole to be equal. A pair that turns up again is
// looked at once: if it differs, that one look tells.
class Comparison {
 public:
  bool Compare(CFObject const& left, CFObject const& right) {
    bool is_equal = Demand(&left, &right, true);
    while (is_equal && !waiting_.empty()) {
      auto const [one, other] = waiting_.back();
      waiting_.pop_back();
      is_equal = one->type() == kCFTypeArray
                     ? CompareArrays(static_cast<__CFArray const&>(*one),
                                     static_cast<__CFArray const&>(*other))
                     : CompareDictionaries(static_cast<__CFDictionary const&>(*one),
                                           static_cast<__CFDictionary const&>(*other));
    }
    return is_equal;
  }

 private:
  using Pair = std::pair<CFObject const*, CFObject const*>;

  bool Demand(void const* left, void const* right, bool are_objects) {
    if (left == right) return true;
    if (!are_objects || left == nullptr || right == nullptr) return false;
    CFObject const& one = CFObject::Of(left);
    CFObject const& other = CFObject::Of(right);
    if (one.type() != other.type()) return false;
    if (one.type() != kCFTypeArray && one.type() != kCFTypeDictionary) return one.EqualTo(other);
    if (seen_.insert({&one, &other}).second) waiting_.push_back({&one, &other});
    return true;
  }

  bool CompareArrays(__CFArray const& left, __CFArray const& right) {
    auto const ones = left.values(), others = right.values();
    if (ones.size() != others.size()) return false;
    if (left.holds_objects() != right.holds_objects()) return false;
    for (std::size_t i = 0; i < ones.size(); ++i) {
      if (!Demand(ones[i], others[i], left.holds_objects())) return false;
    }
    return true;
  }

  bool CompareDictionaries(__CFDictionary const& left, __CFDictionary const& right) {
    if (left.pairs().size() != right.pairs().size()) return false;
    if (left.holds_object_keys() != right.holds_object_keys()) return false;
    if (left.holds_object_values() != right.holds_object_values()) return false;
    for (auto const& [key, value] : left.pairs()) {
      CFIndex const place = right.Find(key);
      if (place == kCFNotFound) return false;
      void const* const other = right.pairs()[static_cast<std::size_t>(place)].value;
      if (!Demand(value, other, left.holds_object_values())) return false;
    }
    return true;
  }

  std::vector<Pair> waiting_;
  std::set<Pair> seen_;
};

}  // namespace

bool AreEqualContainers(CFObject const& left, CFObject const& right) {
  return Comparison().Compare(left, right);
}
