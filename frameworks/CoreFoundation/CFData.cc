#include <CoreFoundation/CFData.h>

#include <cstring>

#include "frameworks/CoreFoundation/data_object.h"
#include "frameworks/CoreFoundation/hash.h"

__CFData* __CFData::MakeUnfilled(std::size_t length, ObjectBlocks* blocks) {
  return CFObject::MakeIn<__CFData>(blocks, length, length);
}

bool __CFData::EqualTo(CFObject const& other) const {
  auto const& data = static_cast<__CFData const&>(other);
  return length_ == data.length_ && std::memcmp(bytes(), data.bytes(), length_) == 0;
}

CFHashCode __CFData::Hash() const { return HashBytes(bytes(), length_); }

CFTypeID CFDataGetTypeID() { return kCFTypeData; }

CFDataRef CFDataCreate(CFAllocatorRef, UInt8 const* bytes, CFIndex length) {
  if (length < 0) return nullptr;
  auto* const data = __CFData::MakeUnfilled(static_cast<std::size_t>(length));
  if (length > 0) std::memcpy(data->bytes(), bytes, data->length());
  return data;
}

CFDataRef CFDataCreateCopy(CFAllocatorRef, CFDataRef theData) {
  theData->Retain();
  return theData;
}

CFIndex CFDataGetLength(CFDataRef theData) { return static_cast<CFIndex>(theData->length()); }

UInt8 const* CFDataGetBytePtr(CFDataRef theData) { return theData->bytes(); }

void CFDataGetBytes(CFDataRef theData, CFRange range, UInt8* buffer) {
  CFIndex const length = CFDataGetLength(theData);
  bool const is_inside = range.location >= 0 && range.length >= 0 && range.location <= length &&
                         range.length <= length - range.location;
  if (!is_inside || range.length == 0) return;
  std::memcpy(buffer, theData->bytes() + range.location, static_cast<std::size_t>(range.length));
}
