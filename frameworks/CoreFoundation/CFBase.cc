#include <CoreFoundation/CFBase.h>

#include "frameworks/CoreFoundation/hash.h"
#include "frameworks/CoreFoundation/object.h"

namespace {

// Whether objects of the type have no destructor that does anything.
bool IsPlain(CFTypeNumber type) {
  constexpr UInt64 kPlain =
      1 << kCFTypeString | 1 << kCFTypeNumber | 1 << kCFTypeDate | 1 << kCFTypeData;
  return (kPlain >> type & 1) != 0;
}

}  // namespace

void CFObject::End() const {
  auto const memory = static_cast<Memory>(Head() & kMemoryMask);
  void* const place = const_cast<CFObject*>(this);
  if (!IsPlain(type())) this->~CFObject();
  switch (memory) {
    case Memory::kNew:
      return ::operator delete(place);
    case Memory::kBlock:
      return ObjectBlocks::GiveBack(place);
    case Memory::kMalloced:
      return std::free(place);
    case Memory::kStatic:
      return;
  }
}

// Not the address itself: those of neighbours differ in few bits.
CFHashCode CFObject::Hash() const { return HashWord(reinterpret_cast<UInt64>(this)); }

// The link takes the place of the count alone: destructors still ask for type and variant. User
// addresses have 48 bits.
void CFObject::Destroy() const {
  if (IsPlain(type())) return End();
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
    object->End();
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
