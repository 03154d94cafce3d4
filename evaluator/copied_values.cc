#include "evaluator/copied_values.h"

#include <algorithm>
#include <cstring>

namespace gatotu {
namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);
constexpr std::size_t kReserve = 1024 * 1024;

}  // namespace

void CopiedValues::Start(TypeEntry const& type) {
  is_string_ = type.kind == ValueType::Kind::kString;
  size_ = type.size;
  entries_.clear();
  bytes_.clear();
}

bool CopiedValues::Add(void const* value) {
  std::size_t offset = bytes_.size();
  std::size_t const room =
      kMostBytes - std::min(kMostBytes, offset + entries_.size() * sizeof(Entry));
  if (is_string_) {
    auto const& string = *static_cast<inspector_string const*>(value);
    if (string.length > room) return false;
    auto const* start = reinterpret_cast<std::byte const*>(string.start);
    if (string.length > 0) bytes_.insert(bytes_.end(), start, start + string.length);
    entries_.push_back({offset, string.length});
    return true;
  }
  if (size_ > room) return false;
  bytes_.resize(offset + (size_ + kAlignment - 1) / kAlignment * kAlignment);
  std::memcpy(bytes_.data() + offset, value, size_);
  entries_.push_back({offset, size_});
  return true;
}

void const* CopiedValues::Get(std::size_t index, inspector_string& room) const {
  Entry const& entry = entries_[index];
  std::byte const* start = bytes_.data() + entry.offset;
  if (!is_string_) return start;
  room = {reinterpret_cast<unsigned char const*>(start), entry.size};
  return &room;
}

void CopiedValues::Trim() {
  if (entries_.capacity() * sizeof(Entry) + bytes_.capacity() <= kReserve) return;
  entries_ = {};
  bytes_ = {};
}

}  // namespace gatotu
