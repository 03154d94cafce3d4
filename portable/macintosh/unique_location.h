// New items under names that nothing else has.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// An empty file or folder in `directory`, named by the hint (may be null) and six characters more;
// only its owner may use it. `FullPathFailed` when the path comes to more than 1023 bytes,
// `CreateUniqueFileLocationFailed` when the item cannot be made or the hint is no part of a name.
GATOTU_API FileLocation CreateUniqueFileOrDirLocation(FileLocation const& directory,
                                                      char const* hint, bool is_directory);
GATOTU_API FileLocation CreateUniqueFileLocation(FileLocation const& directory, char const* hint);
GATOTU_API FileLocation CreateUniqueDirLocation(FileLocation const& directory, char const* hint);
// In the folder, or beside what is none.
GATOTU_API FileLocation CreateUniqueFileLocationWithHint(FileLocation const& location,
                                                         char const* hint);

// A name of `temp` and six characters that was free a moment ago, in the folder, or beside what is
// none. Nothing is left there. `EmptyFileLocationError`.
GATOTU_API FileLocation LocationForTemporaryFile(FileLocation const& location);

}  // namespace MacintoshPlatform
