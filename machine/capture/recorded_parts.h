// Parts of a file's content: what those saw who looked into it and did not read it all.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "machine/capture/facts.h"

namespace machine::capture {

// Of one file. Whoever reads more of it wants the whole.
inline constexpr std::size_t kLargestParts = std::size_t{1} << 16;

class RecordedParts {
 public:
  // What was read at an offset when `wanted` bytes were asked for: with fewer, the file ends there.
  void Keep(std::uint64_t offset, std::string_view bytes, std::size_t wanted);
  // As reading the file did. Nothing where it was not read.
  std::optional<std::size_t> Read(std::uint64_t offset, char* buffer, std::size_t size) const;
  std::size_t bytes() const { return bytes_; }

 private:
  friend Record RecordOf(RecordedParts const& parts);
  friend Fact<RecordedParts> PartsIn(Field const& field);

  // By their offsets. An empty one stands at the end of the file.
  std::map<std::uint64_t, std::string> parts_;
  std::size_t bytes_ = 0;
};

// A dictionary: offset to data.
Record RecordOf(RecordedParts const& parts);
Fact<RecordedParts> PartsIn(Field const& field);

}  // namespace machine::capture
