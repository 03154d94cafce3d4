// Owning handles of Core Foundation objects: one reference each, given back on every path.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

// Holds nothing when null. Ownership moves, it is never shared.
class AutoCFString {
 public:
  AutoCFString() = default;
  AutoCFString(AutoCFString&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  AutoCFString& operator=(AutoCFString&& other) noexcept {
    CFStringRef const taken = std::exchange(other.string_, nullptr);
    DisposeCFStringRef(std::exchange(string_, taken));
    return *this;
  }
  ~AutoCFString() { DisposeCFStringRef(string_); }

  // Takes over one reference that the caller owns, and gives back the one held before.
  void Seize(CFStringRef string) { DisposeCFStringRef(std::exchange(string_, string)); }

  // Borrowed; null when nothing is held.
  CFStringRef Get() const { return string_; }

  static void DisposeCFStringRef(CFStringRef string) {
    if (string != nullptr) CFRelease(string);
  }

 private:
  CFStringRef string_ = nullptr;
};
