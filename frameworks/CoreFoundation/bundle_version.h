// Version numbers in the classic form: a word of two decimal digits, a digit, a digit, a stage and
// a number.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string_view>

// Of text such as "10", "1.2", "1.2.3" or "10.4.2b12"; 0 for any other form. The stages are d
// (0x20), a (0x40), b (0x60) and f or fc (0x80, as without any), with a number up to 255.
UInt32 PackedVersion(std::string_view text);
