// Equality of what containers hold, at any depth and with shared parts, in which going down by
// recursion would overflow the stack and visiting each path would never end.
#pragma once

#include "frameworks/CoreFoundation/object.h"

// Of two arrays or two dictionaries.
bool AreEqualContainers(CFObject const& left, CFObject const& right);

// Retaining and comparing what may be an object or a plain pointer. Null is never an object.
inline void RetainValue(void const* value, bool is_object) {
  if (is_object && value != nullptr) CFObject::Of(value).Retain();
}
inline void ReleaseValue(void const* value, bool is_object) {
  if (is_object && value != nullptr) CFObject::Of(value).Release();
}
inline bool AreEqualValues(void const* left, void const* right, bool are_objects) {
  if (left == right) return true;
  if (!are_objects || left == nullptr || right == nullptr) return false;
  CFObject const& one = CFObject::Of(left);
  CFObject const& other = CFObject::Of(right);
  return one.type() == other.type() && one.EqualTo(other);
}
