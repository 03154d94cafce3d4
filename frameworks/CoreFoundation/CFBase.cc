#include <CoreFoundation/CFBase.h>

#include "frameworks/CoreFoundation/object.h"

// The link takes the place of the count alone: destructors still ask for type and variant. User
// addresses have 48 bits.
void CFObject::Destroy() const {
  thread_local CFObject const* waiting = nullptr;
  thread_local bool is_destroying = false;
  head_.store(reinterpret_cast<UInt64>(waiting) * kOne | (Head() & (kOne - 1)),
              std::memory_order_relaxed);
  waiting = this;
  if (is_destroying) return;
  is_destroying = true;
  while (waiting != nullptr) {
    CFObject const* const object = waiting;
    waiting = reinterpret_cast<CFObject const*>(object->Head() / kOne);
    void* const memory = const_cast<void*>(dynamic_cast<void const*>(object));
    object->~CFObject();
    ::operator delete(memory);
  }
  is_destroying = false;
}

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
