// Patterns of paths, as shells have them. `*`, `?` and `[...]` stand for characters of one name,
// `**` for any number of folders; a backslash takes a character as it stands. A name that begins
// with a dot is found by a part that begins with one only, and `**` passes no such folder. What
// stands for a name finds links, but does not go through them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/files.h"

namespace machine::capture {

// One that was understood, cut at its slashes.
using PatternParts = std::vector<std::string>;

// Nothing when it does not begin at the root.
std::optional<PatternParts> PartsOfPattern(std::string_view pattern);

class PatternVisitor {
 public:
  virtual ~PatternVisitor() = default;
  // What lies at the path is of the pattern, if there is anything.
  virtual void Matched(std::string const& path) = 0;
  // A folder on the way cannot be listed.
  virtual void Refused(std::string const& path, Absence const& why) = 0;
  virtual bool HasEnough() const = 0;
};

void FindMatches(FileSource const& files, PatternParts const& parts, PatternVisitor& visitor);

}  // namespace machine::capture
