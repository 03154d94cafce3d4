// Sharing, casting and looking into Core Foundation objects.
#pragma once

#include <vector>

#include "portable/const_data.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/errors.h"

// One more reference to the same object, never a copy. Null gives an empty handle.
GATOTU_API AutoCFArray Duplicate(CFArrayRef array);
GATOTU_API AutoCFDictionary Duplicate(CFDictionaryRef dictionary);
GATOTU_API AutoCFString Duplicate(CFStringRef string);
GATOTU_API AutoCFData Duplicate(CFDataRef data);
GATOTU_API AutoCFURL Duplicate(CFURLRef url);

// The root of a property list, in any of the forms that the platform reads; `mutability` is one of
// its options. `ArrayCreateFromXMLDataFailed` or `DictionaryCreateFromXMLDataFailed` when it does
// not parse or has a root of another type.
GATOTU_API AutoCFArray ArrayCreateFromXMLData(CFDataRef data, CFOptionFlags mutability);
GATOTU_API AutoCFDictionary DictionaryCreateFromXMLData(CFDataRef data, CFOptionFlags mutability);

// Borrowed. `CFDictionaryGetValueIfPresentFailed` when the key is absent.
GATOTU_API void const* GetDictionaryValue(CFDictionaryRef dictionary, CFStringRef key);

// The object, null included, or `CFCastError` when it is of another type. There is a cast to
// `CFStringRef`.
template <typename Reference>
Reference CFCast(void const* object);
template <>
GATOTU_API CFStringRef CFCast<CFStringRef>(void const* object);

// `CFDataCreateError` when the platform refuses.
GATOTU_API AutoCFData MakeCFData(ConstData bytes);
// A copy; no bytes for null.
GATOTU_API std::vector<unsigned char> ExtractCFData(CFDataRef data);
