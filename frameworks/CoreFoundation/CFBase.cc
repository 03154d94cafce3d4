#include <CoreFoundation/CFBase.h>

#include "frameworks/CoreFoundation/object.h"

CFTypeRef CFRetain(CFTypeRef object) {
  CFObject::Of(object).Retain();
  return object;
}

void CFRelease(CFTypeRef object) { CFObject::Of(object).Release(); }

CFIndex CFGetRetainCount(CFTypeRef object) { return CFObject::Of(object).count(); }

CFTypeID CFGetTypeID(CFTypeRef object) { return CFObject::Of(object).type(); }

Boolean CFEqual(CFTypeRef left, CFTypeRef right) {
  if (left == right) return true;
  CFObject const& one = CFObject::Of(left);
  CFObject const& other = CFObject::Of(right);
  return one.type() == other.type() && one.EqualTo(other);
}

CFHashCode CFHash(CFTypeRef object) { return CFObject::Of(object).Hash(); }
