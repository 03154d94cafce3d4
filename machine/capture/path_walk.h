// Paths without the kernel: to where links lead among items that exist in a recording only.
#pragma once

#include <string>

#include "machine/files.h"

namespace machine::capture {

// What a walk asks on its way. Paths are absolute and without links, "." and "..".
class ItemsOnTheWay {
 public:
  virtual ~ItemsOnTheWay() = default;
  virtual Fact<ItemKind> KindOf(std::string const& path) = 0;
  virtual Fact<std::string> TargetOf(std::string const& path) = 0;
};

// The path without links, "." and "..", which stays below the root like the kernel's own walks.
// With `kKeep` the last item is not looked at.
Fact<std::string> WalkPath(ItemsOnTheWay& items, std::string const& path, Links links);

// The folder that holds an item, and its name there. Of the root itself: "/" and nothing.
struct SplitPath {
  explicit SplitPath(std::string const& path);
  std::string folder, name;
};

}  // namespace machine::capture
