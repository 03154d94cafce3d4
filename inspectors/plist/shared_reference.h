// One reference to an object of the system for all copies of a value together: the last of them
// gives it back.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "inspectors/plist/ring_of_copies.h"

template <typename Reference, auto kRelease = CFRelease>
class SharedReference {
 public:
  // Takes over one reference that the caller owns; not null.
  explicit SharedReference(Reference owned) : reference_(owned) {}
  SharedReference(SharedReference const&) = default;
  SharedReference& operator=(SharedReference const& source) {
    if (this == &source) return *this;
    GiveBackIfLast();
    reference_ = source.reference_;
    ring_ = source.ring_;
    return *this;
  }
  ~SharedReference() { GiveBackIfLast(); }

  // Borrowed.
  Reference Get() const { return reference_; }

 private:
  void GiveBackIfLast() {
    if (ring_.IsAlone()) kRelease(reference_);
  }

  Reference reference_;
  RingOfCopies ring_;
};
