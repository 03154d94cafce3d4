// Values of a copyable type, copied out of where their inspectors constructed them: plain bytes,
// and strings with theirs. The buffers stay for the next use.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "evaluator/plugin/values.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

class CopiedValues {
 public:
  // Of all values together. What would not end in memory ends here.
  static constexpr std::size_t kMostBytes = std::size_t{256} << 20;

  // Forgets the values; of which type the next ones are.
  void Start(TypeEntry const& type);
  // False, and nothing is added, when there is no room for it.
  [[nodiscard]] bool Add(void const* value);

  std::size_t Count() const { return entries_.size(); }
  // The value, in place or put together in `room`; valid until the next change.
  void const* Get(std::size_t index, inspector_string& room) const;

  // The bytes of all strings, in the order in which they were added.
  inspector_string AllBytes() const {
    return {reinterpret_cast<unsigned char const*>(bytes_.data()), bytes_.size()};
  }

  // Sorts by `before(i, j)` on positions: by heap, which needs no room and stays within bounds
  // with a `before` that contradicts itself, as an inspector's may.
  template <class Before>
  void Sort(Before&& before);
  void Truncate(std::size_t count) { entries_.resize(count); }
  void Move(std::size_t from, std::size_t to) { entries_[to] = entries_[from]; }

  // Gives memory back when a large answer has grown the buffers.
  void Trim();

 private:
  struct Entry {
    std::size_t offset;
    std::size_t size;
  };

  template <class Before>
  void SiftDown(std::size_t root, std::size_t end, Before& before);

  bool is_string_ = false;
  std::size_t size_ = 0;
  std::vector<Entry> entries_;
  std::vector<std::byte> bytes_;
};

template <class Before>
void CopiedValues::SiftDown(std::size_t root, std::size_t end, Before& before) {
  for (std::size_t child; (child = 2 * root + 1) < end; root = child) {
    if (child + 1 < end && before(child, child + 1)) ++child;
    if (!before(root, child)) return;
    std::swap(entries_[root], entries_[child]);
  }
}

template <class Before>
void CopiedValues::Sort(Before&& before) {
  std::size_t count = entries_.size();
  for (std::size_t root = count / 2; root-- > 0;) SiftDown(root, count, before);
  for (std::size_t end = count; end-- > 1;) {
    std::swap(entries_[0], entries_[end]);
    SiftDown(0, end, before);
  }
}

}  // namespace gatotu
