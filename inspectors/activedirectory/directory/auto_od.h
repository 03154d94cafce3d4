// Owning handles of what the directory's calls open and allocate: one object each, given back on
// every path.
#pragma once

#include <DirectoryService/DirectoryService.h>

#include <cstdlib>
#include <utility>

// What the handles have in common. Holds nothing when it is 0 or null; ownership moves with the
// handle, whose source then holds nothing, and is never shared.
template <typename Object, auto GiveBack>
class AutoOD {
 public:
  AutoOD() = default;
  explicit AutoOD(Object owned) : object_(owned) {}
  AutoOD(AutoOD&& other) noexcept : object_(other.Release()) {}
  AutoOD& operator=(AutoOD&& other) noexcept {
    Seize(other.Release());
    return *this;
  }
  ~AutoOD() { Dispose(); }

  // Takes over an object that the caller owns, and gives back the one held before.
  void Seize(Object owned) {
    Object const before = std::exchange(object_, owned);
    if (before != Object()) GiveBack(before);
  }
  // Gives back early.
  void Dispose() { Seize(Object()); }
  // The caller owns the object from here on.
  Object Release() { return std::exchange(object_, Object()); }

  // Borrowed.
  Object Get() const { return object_; }

 private:
  Object object_ = Object();
};

// A buffer with the service it was made for.
struct DirectoryBuffer {
  tDataBufferPtr data = nullptr;
  tDirReference service = 0;

  bool operator==(DirectoryBuffer const&) const = default;
};

inline void DisposeBuffer(DirectoryBuffer buffer) {
  dsDataBufferDeAllocate(buffer.service, buffer.data);
}

// Lists and entries may outlive their service, so that none is named.
inline void DisposeList(tDataListPtr list) {
  dsDataListDeallocate(0, list);
  std::free(list);
}
inline void DisposeRecordEntry(tRecordEntryPtr entry) { dsDeallocRecordEntry(0, entry); }
inline void DisposeAttrEntry(tAttributeEntryPtr entry) { dsDeallocAttributeEntry(0, entry); }
inline void DisposeAttrValueEntry(tAttributeValueEntryPtr entry) {
  dsDeallocAttributeValueEntry(0, entry);
}

using AutoODReference = AutoOD<tDirReference, dsCloseDirService>;
using AutoODNodeRef = AutoOD<tDirNodeReference, dsCloseDirNode>;
using AutoODDataBuffer = AutoOD<DirectoryBuffer, DisposeBuffer>;
using AutoODDataList = AutoOD<tDataListPtr, DisposeList>;
using AutoODRecordEntry = AutoOD<tRecordEntryPtr, DisposeRecordEntry>;
using AutoODAttrList = AutoOD<tAttributeListRef, dsCloseAttributeList>;
using AutoODAttrEntry = AutoOD<tAttributeEntryPtr, DisposeAttrEntry>;
using AutoODAttrValueList = AutoOD<tAttributeValueListRef, dsCloseAttributeValueList>;
using AutoODAttrValueEntry = AutoOD<tAttributeValueEntryPtr, DisposeAttrValueEntry>;

struct AutoODRecordEntryAttrList {
  AutoODRecordEntry entry;
  AutoODAttrList attributes;
};
struct AutoODAttrEntryAttrValueList {
  AutoODAttrEntry entry;
  AutoODAttrValueList values;
};
