#include <CoreServices/TextEncodingConverter.h>

#include "frameworks/CoreFoundation/encodings/convert.h"

OSStatus TECGetTextEncodingFromInternetName(ConstStr255Param encodingName, TextEncoding* encoding) {
  std::string_view const name(reinterpret_cast<char const*>(encodingName + 1), encodingName[0]);
  switch (encodings::FindEncoding(name, *encoding)) {
    case encodings::NameSearch::kFound:
      return noErr;
    case encodings::NameSearch::kUnavailable:
      return kTextUnsupportedEncodingErr;
    case encodings::NameSearch::kUnknown:
      break;
  }
  return kTextMalformedInputErr;
}
