// Owning handles of Core Foundation objects: one reference each, given back on every path.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

// A reference on its way from the function that obtained it to the handle that will own it.
template <typename Reference>
class ResourceTransfer {
 public:
  explicit ResourceTransfer(Reference owned) : reference_(owned) {}
  ResourceTransfer(ResourceTransfer&& other) noexcept : reference_(other.Take()) {}
  ResourceTransfer& operator=(ResourceTransfer&&) = delete;
  ~ResourceTransfer() {
    if (reference_ != nullptr) CFRelease(reference_);
  }

  // The caller owns it from here on.
  Reference Take() { return std::exchange(reference_, nullptr); }

 private:
  Reference reference_;
};

// What the handles have in common. Holds nothing when null; ownership moves, it is never shared.
template <typename Reference>
class AutoCF {
 public:
  AutoCF() = default;
  AutoCF(ResourceTransfer<Reference>&& transfer) noexcept  // NOLINT(google-explicit-constructor)
      : reference_(transfer.Take()) {}
  AutoCF(AutoCF&& other) noexcept : reference_(other.Release()) {}
  // What was held is given back last, so that an object may be replaced by one it keeps alive.
  AutoCF& operator=(AutoCF&& other) noexcept {
    Reference const taken = other.Release();
    Dispose(std::exchange(reference_, taken));
    return *this;
  }
  ~AutoCF() { Dispose(reference_); }

  // Takes over one reference that the caller owns, and gives back the one held before.
  void Seize(Reference owned) { Dispose(std::exchange(reference_, owned)); }

  // The caller owns the reference from here on.
  Reference Release() { return std::exchange(reference_, nullptr); }

  // Borrowed; null when nothing is held.
  Reference Get() const { return reference_; }

 protected:
  static void Dispose(Reference reference) {
    if (reference != nullptr) CFRelease(reference);
  }

 private:
  Reference reference_ = nullptr;
};

// The dispose functions release what is not null.
class AutoCFString : public AutoCF<CFStringRef> {
 public:
  using AutoCF::AutoCF;
  static void DisposeCFStringRef(CFStringRef string) { Dispose(string); }
};

class AutoCFArray : public AutoCF<CFArrayRef> {
 public:
  using AutoCF::AutoCF;
  static void DisposeCFArrayRef(CFArrayRef array) { Dispose(array); }
};

class AutoCFDictionary : public AutoCF<CFDictionaryRef> {
 public:
  using AutoCF::AutoCF;
  static void DisposeCFDictionaryRef(CFDictionaryRef dictionary) { Dispose(dictionary); }
};

class AutoCFURL : public AutoCF<CFURLRef> {
 public:
  using AutoCF::AutoCF;
  static void DisposeCFURLRef(CFURLRef url) { Dispose(url); }
};

class AutoCFData : public AutoCF<CFDataRef> {
 public:
  using AutoCF::AutoCF;
  static void DisposeCFDataRef(CFDataRef data) { Dispose(data); }
};
