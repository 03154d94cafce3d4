#pragma once

#include <CoreServices/MacTypes.h>

enum : OSStatus { kTextUnsupportedEncodingErr = -8738, kTextMalformedInputErr = -8739 };

// The number of the encoding with this Internet name (length-prefixed ASCII, any letter case, every
// alias that ICU knows). `kTextMalformedInputErr` for an unknown name,
// `kTextUnsupportedEncodingErr` where the library that knows the names cannot be loaded; `encoding`
// is then left alone.
CF_EXPORT OSStatus TECGetTextEncodingFromInternetName(ConstStr255Param encodingName,
                                                      TextEncoding* encoding);
