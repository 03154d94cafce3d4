// The files in the folder of a capture.
#pragma once

#include <cstdint>

namespace machine::capture {

inline constexpr char kDocument[] = "machine.plist";
// There until the document is.
inline constexpr char kUnfinished[] = "machine.plist.unfinished";
inline constexpr char kRoot[] = "root";
inline constexpr std::int64_t kFormatVersion = 1;

}  // namespace machine::capture
