// The text of property-list values, in memory of the evaluator.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "evaluator/plugin/values.h"

// Always Mac Roman, whatever the report encoding is; "?" for what that lacks.
inspector_string CFStringValue(CFStringRef string);

// The bytes as they are.
inspector_string CFDataValue(CFDataRef data);

// The bytes without one NUL at their end, where there is one.
inspector_string CFDataAsCStringValue(CFDataRef data);

// Of a key that is a string; any other is `NoSuchObject`.
inspector_string CFKeyValue(void const* key);
