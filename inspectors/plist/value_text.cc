#include "inspectors/plist/value_text.h"

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"

namespace {

CFIndex ToMacRoman(CFStringRef string, UInt8* buffer, CFIndex size) {
  CFIndex used = 0;
  CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingMacRoman,
                   '?', true, buffer, size, &used);
  return used;
}

ConstData BytesOf(CFDataRef data) {
  return {CFDataGetBytePtr(data), static_cast<unsigned long>(CFDataGetLength(data))};
}

}  // namespace

inspector_string CFStringValue(CFStringRef string) {
  CFIndex const size = ToMacRoman(string, nullptr, 0);
  auto* const buffer =
      static_cast<UInt8*>(Allocate_Inspector_Memory(static_cast<unsigned long>(size)));
  return {buffer, static_cast<unsigned long>(ToMacRoman(string, buffer, size))};
}

inspector_string CFDataValue(CFDataRef data) { return CopyToInspectorString(BytesOf(data)); }

inspector_string CFDataAsCStringValue(CFDataRef data) {
  ConstData bytes = BytesOf(data);
  if (!bytes.IsEmpty() && bytes.end[-1] == 0) --bytes.end;
  return CopyToInspectorString(bytes);
}

inspector_string CFKeyValue(void const* key) {
  if (CFGetTypeID(key) != CFStringGetTypeID()) throw NoSuchObject();
  return CFStringValue(static_cast<CFStringRef>(key));
}
