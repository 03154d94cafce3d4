// What the kernel and an item's companion tell of it.
#pragma once

#include <string>
#include <string_view>

#include "machine/file_descriptor.h"
#include "machine/files.h"
#include "machine/live/apple_double.h"

namespace machine::live {

// False with `errno` set. An empty name is the open item itself, else a last link is not followed.
bool ReadStatus(int folder, char const* name, ItemStatus& status);

inline bool MayHaveFinderInfo(ItemKind kind) {
  return kind == ItemKind::kFile || kind == ItemKind::kFolder;
}

// Opens a companion for looking into it; closed when there is none.
FileDescriptor OpenCompanion(int folder, char const* name);
// The companion's content, announced by its path. Nothing when the file is no AppleDouble file.
std::optional<AppleDouble> ReadCompanion(int folder, char const* name, std::string_view path);

// Fills in the Finder information and the size of the resource fork, first found: attributes, a
// named fork, the companion. `plain_path` leads to the item, `path` is what is announced.
struct ItemPaths {
  int folder;
  char const* name;
  char const* plain_path;
  std::string_view path;
};
void ReadFinderDetails(ItemPaths const& paths, bool has_named_forks, bool may_have_companion,
                       Item& item);

// Whether the file system there shows resource forks as files: "name/..namedfork/rsrc".
bool HasNamedForks(char const* plain_path);
inline constexpr char kNamedFork[] = "/..namedfork/rsrc";

// The path of an entry, for announcing.
std::string PathIn(std::string_view folder, std::string_view name);
// The path of an item's companion, empty for the root.
std::string CompanionPath(std::string_view path);

}  // namespace machine::live
