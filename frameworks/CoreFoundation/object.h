// What every Core Foundation object is inside: a count, a type number, equality and a hash. Objects
// are made with a count of one by `Make`, which hands that reference over, and end with the last
// `CFRelease`.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <atomic>
#include <new>
#include <utility>

// The type numbers, stable within a process.
enum CFTypeNumber : CFTypeID {
  kCFTypeString = 7,
  kCFTypeTimeZone = 19,
};

class CFObject {
 public:
  explicit CFObject(CFTypeID type) : type_(type) {}
  virtual ~CFObject() = default;
  CFObject(CFObject const&) = delete;
  CFObject& operator=(CFObject const&) = delete;

  // Every reference leads here: the object is the first base of what it points to.
  static CFObject const& Of(CFTypeRef reference) {
    return *static_cast<CFObject const*>(reference);
  }

  // Constructs an object with `extra` bytes of room behind it.
  template <typename Object, typename... Arguments>
  static Object const* MakeWithRoom(std::size_t extra, Arguments&&... arguments) {
    void* const memory = ::operator new(sizeof(Object) + extra);
    try {
      return ::new (memory) Object(std::forward<Arguments>(arguments)...);
    } catch (...) {
      ::operator delete(memory);
      throw;
    }
  }
  template <typename Object, typename... Arguments>
  static Object const* Make(Arguments&&... arguments) {
    return MakeWithRoom<Object>(0, std::forward<Arguments>(arguments)...);
  }

  CFTypeID type() const { return type_; }

  // Asked only of two different objects of one type.
  virtual bool EqualTo(CFObject const&) const { return false; }
  virtual CFHashCode Hash() const { return reinterpret_cast<CFHashCode>(this); }

  void Retain() const { count_.fetch_add(1, std::memory_order_relaxed); }
  void Release() const {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    void* const memory = const_cast<void*>(dynamic_cast<void const*>(this));
    this->~CFObject();
    ::operator delete(memory);
  }
  CFIndex count() const { return count_.load(std::memory_order_relaxed); }

 private:
  mutable std::atomic<CFIndex> count_ = 1;
  CFTypeID type_;
};
