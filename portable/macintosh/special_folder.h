// Folders that the platform knows by a four-character code.
#pragma once

#include "portable/macintosh/file_location.h"

namespace MacintoshPlatform {

// The first character in the highest byte: 'temp' is 0x74656D70.
using MacFileType = UInt32;

// In a domain of `FSFindFolder`. `create` asks for the folder to be made where it is missing.
// `CannotCreateSpecialFolder` with the platform's code.
GATOTU_API FileLocation MakeFileLocation(MacFileType type, short domain, unsigned char create);

// Where temporary files belong on the system's volume (`kOnSystemDisk`) or in a domain.
GATOTU_API FileLocation TemporaryFileDirLocation(short volume);

}  // namespace MacintoshPlatform
