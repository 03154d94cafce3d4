#include "frame/inspector_strings.h"

#include <cstring>

#include "evaluator/plugin/entry_points.h"
#include "frame/report_encoding.h"

namespace {

constexpr UInt8 kLossByte = '?';

// A null start goes with no bytes, and `memcpy` takes no null even then.
void CopyBytes(unsigned char* to, ConstData from) {
  if (from.Length() != 0) std::memcpy(to, from.begin, from.Length());
}

}  // namespace

inspector_string AsInspectorString(CFStringRef text) {
  CFStringEncoding const encoding = GetReportEncodingFromInspector();
  CFRange const whole = CFRangeMake(0, CFStringGetLength(text));
  constexpr Boolean kExternalRepresentation = true;
  CFIndex size = 0;
  CFStringGetBytes(text, whole, encoding, kLossByte, kExternalRepresentation, nullptr, 0, &size);
  auto* const bytes =
      static_cast<unsigned char*>(Allocate_Inspector_Memory(static_cast<unsigned long>(size)));
  CFIndex used = 0;
  CFStringGetBytes(text, whole, encoding, kLossByte, kExternalRepresentation, bytes, size, &used);
  return {bytes, static_cast<unsigned long>(used)};
}

inspector_string AsInspectorString(ConstData bytes) { return {bytes.begin, bytes.Length()}; }

inspector_string CopyToInspectorString(ConstData bytes) {
  auto* const copy = static_cast<unsigned char*>(Allocate_Inspector_Memory(bytes.Length()));
  CopyBytes(copy, bytes);
  return {copy, bytes.Length()};
}

inspector_string CopyToInspectorString(ConstDataRopeReference pieces) {
  unsigned long const length = TotalLength(pieces);
  auto* const joined = static_cast<unsigned char*>(Allocate_Inspector_Memory(length));
  unsigned char* next = joined;
  for (ConstData const& piece : pieces) {
    CopyBytes(next, piece);
    next += piece.Length();
  }
  return {joined, length};
}
