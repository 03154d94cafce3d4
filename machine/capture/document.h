// The files in the folder of a capture.
#pragma once

#include <cstddef>
#include <cstdint>

namespace machine::capture {

inline constexpr char kDocument[] = "machine.plist";
// There until the document is.
inline constexpr char kUnfinished[] = "machine.plist.unfinished";
inline constexpr char kRoot[] = "root";
inline constexpr std::int64_t kFormatVersion = 1;
// A larger document is neither read nor written. In memory it is some eight times as large.
inline constexpr std::size_t kLargestDocument = std::size_t{1} << 27;

}  // namespace machine::capture
