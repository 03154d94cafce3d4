// Property lists written as XML, in the layout of the platform: keys in order, a tab a level, data
// in lines of base64. What is read back is equal in everything but fractions of a second in dates.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string>

#include "frameworks/CoreFoundation/property_list_error.h"

// Objects may stand in many places, each written out: what a few shared ones amount to is refused
// beyond this.
inline constexpr std::size_t kLongestXmlPropertyList = std::size_t{1} << 28;

// Appends the document to `text`. Control characters, and surrogates without their pair, are
// written by number: readers that insist on the letter of XML refuse those. False and the reason in
// `error` when the root holds what no property list does, or itself, or nests too deeply.
bool WriteXmlPropertyList(CFPropertyListRef root, std::string& text, PropertyListError& error);
