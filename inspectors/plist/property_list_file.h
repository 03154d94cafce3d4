// Files as property lists.
#pragma once

#include "portable/core_foundation/auto_cf.h"

class file;

// All bytes of its data fork. `NoSuchObject` when they cannot be read.
AutoCFData ContentOf(file const& file);
