// A folder of a test's own.
#pragma once

#include "tests/support/temporary_folder.h"
