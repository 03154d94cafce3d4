#include <CoreFoundation/CFNull.h>

#include "frameworks/CoreFoundation/object.h"

struct __CFNull final : CFObject {
  constexpr __CFNull() : CFObject(Constant(), kCFTypeNull) {}
};

namespace {

constinit CFConstant<__CFNull> const null;

}  // namespace

constinit CFNullRef const kCFNull = &null.object;

CFTypeID CFNullGetTypeID() { return kCFTypeNull; }
