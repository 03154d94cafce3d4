// Property lists as one line of text, so that tests compare them whole: {"key":1,...} with keys in
// order, [..], "text" with \uXXXX for all but printable ASCII, <hex>, @seconds since 2001, and
// reals as the hexadecimal digits of their bits behind "r".
#pragma once

#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>

#include "tests/frameworks/cf_text.h"

std::string Print(CFTypeRef value);

// The value that a text stands for, printed, or what is wrong with it behind "! ".
std::string PrintParsed(std::string_view text, CFOptionFlags options = kCFPropertyListImmutable);
