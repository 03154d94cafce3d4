// Names against patterns of `*` and `?`.
#pragma once

#include <CoreFoundation/CFBase.h>

#include "portable/const_data.h"

// Whether all of the name matches: `?` stands for one unit, `*` for any number, any other byte for
// the unit of its own value, case included. There is no escape and no class. The work is at most
// proportional to the name's length times the pattern's.
GATOTU_API bool MatchesWildCardInternal(UniChar const* units, unsigned long count,
                                        char const* pattern);

// The last component of the path when it holds `*` or `?`, with the part before its `/` as
// `directoryPart` (empty for the root); null, with the whole path, when it does not. The path holds
// a `/`.
GATOTU_API char const* MakeFileLocationWithWildcardUnix(char const* path, ConstData& directoryPart);
