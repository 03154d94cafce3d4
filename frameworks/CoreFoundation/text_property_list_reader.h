// The old text form of property lists: strings with or without quotation marks, (arrays),
// {dictionaries}, <data>, and comments as in C; and the `.strings` files that are the inside of a
// dictionary. Everything that is not a container or data is a string.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string_view>

#include "frameworks/CoreFoundation/property_list_error.h"

// The root with one reference for the caller, or null and the reason in `error`. `text` is UTF-8,
// checked where it is read. Nothing but white space and comments is an empty dictionary. Of equal
// keys the last counts.
CFPropertyListRef ReadTextPropertyList(std::string_view text, CFOptionFlags options,
                                       PropertyListError& error);
