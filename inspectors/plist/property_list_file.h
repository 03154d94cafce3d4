// Files as property lists.
#pragma once

#include "portable/core_foundation/auto_cf.h"

class file;

// All bytes of its data fork. `NoSuchObject` when they cannot be read.
AutoCFData ContentOf(file const& file);

// Tells whoever listens why the content gave no list with a root of that type, which the errors
// thrown for it leave unsaid.
void AnnounceMalformed(file const& file, CFDataRef content, CFTypeID root);
