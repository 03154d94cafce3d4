// Property lists in XML, read in one pass over the text into objects.
//
// Only what property lists are made of is read: the document type and its internal subset are
// skipped, nothing outside the text is ever opened, and of entities only the five of XML and
// character numbers are known. Numbers may stand for any UTF-16 unit, so that whatever a string
// holds can be written. Line ends stay as they are in the source. A missing declaration, document
// type or <plist>, and white space before the declaration, are no faults.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string_view>

#include "frameworks/CoreFoundation/property_list_error.h"

// Whether text begins as XML does: with "<", but not with data in the old text form ("<0fbd77>").
bool LooksLikeXml(std::string_view text);

// The root with one reference for the caller, or null and the reason in `error`. `text` is UTF-8,
// checked where it is read. Of equal keys the last counts.
CFPropertyListRef ReadXmlPropertyList(std::string_view text, CFOptionFlags options,
                                      PropertyListError& error);
