// What every Core Foundation object is inside: a count, a type number, equality and a hash. Objects
// are made with a count of one by `Make`, which hands that reference over, and end with the last
// `CFRelease`.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "frameworks/CoreFoundation/object_blocks.h"

// The type numbers, stable within a process, below 64.
enum CFTypeNumber : CFTypeID {
  kCFTypeString = 7,
  kCFTypeNull = 16,
  kCFTypeDictionary = 17,
  kCFTypeArray = 18,
  kCFTypeTimeZone = 19,
  kCFTypeData = 20,
  kCFTypeBoolean = 21,
  kCFTypeNumber = 22,
  kCFTypeDate = 23,
  kCFTypeURL = 24,
  kCFTypeBundle = 25,
  kSCTypeDynamicStore = 26,
};

class CFObject {
 public:
  // `variant` is a derived class's own to tell its kinds of object apart.
  explicit constexpr CFObject(CFTypeNumber type, UInt8 variant = 0) noexcept
      : head_(kOne | static_cast<UInt64>(variant) << 8 | static_cast<UInt64>(type)) {}
  constexpr virtual ~CFObject() = default;
  CFObject(CFObject const&) = delete;
  CFObject& operator=(CFObject const&) = delete;

  // Every reference leads here: the object is the first base of what it points to.
  static CFObject const& Of(CFTypeRef reference) {
    return *static_cast<CFObject const*>(reference);
  }

  // Constructs an object with `extra` bytes of room behind it.
  template <typename Object, typename... Arguments>
  static Object* MakeWithRoom(std::size_t extra, Arguments&&... arguments) {
    void* const memory = ::operator new(sizeof(Object) + extra);
    try {
      return ::new (memory) Object(std::forward<Arguments>(arguments)...);
    } catch (...) {
      ::operator delete(memory);
      throw;
    }
  }
  template <typename Object, typename... Arguments>
  static Object* Make(Arguments&&... arguments) {
    return MakeWithRoom<Object>(0, std::forward<Arguments>(arguments)...);
  }

  // For readers: in blocks, where there are any and the object is small enough for them.
  template <typename Object, typename... Arguments>
  static Object* MakeIn(ObjectBlocks* blocks, std::size_t extra, Arguments&&... arguments) {
    static_assert(std::is_nothrow_constructible_v<Object, Arguments...>);
    void* const memory = blocks == nullptr ? nullptr : blocks->Take(sizeof(Object) + extra);
    if (memory == nullptr) return MakeWithRoom<Object>(extra, arguments...);
    return MakeAt<Object>(memory, Memory::kBlock, arguments...);
  }
  // Takes over memory that `malloc` gave, which the object is to begin.
  template <typename Object, typename... Arguments>
  static Object* MakeInMalloced(void* memory, Arguments&&... arguments) {
    static_assert(std::is_nothrow_constructible_v<Object, Arguments...>);
    return MakeAt<Object>(memory, Memory::kMalloced, arguments...);
  }

  CFTypeNumber type() const { return static_cast<CFTypeNumber>(Head() & kTypeMask); }
  UInt8 variant() const { return static_cast<UInt8>(Head() >> 8); }

  // Asked only of two different objects of one type.
  virtual bool EqualTo(CFObject const&) const { return false; }
  virtual CFHashCode Hash() const;

  void Retain() const {
    if (!IsConstant(Head())) head_.fetch_add(kOne, std::memory_order_relaxed);
  }
  // For readers, cheaper: no other thread knows the object yet, or it is a constant.
  void RetainUnshared() const {
    UInt64 const head = Head();
    if (!IsConstant(head)) head_.store(head + kOne, std::memory_order_relaxed);
  }
  void ReleaseUnshared() const {
    if (Head() < 2 * kOne) return Destroy();
    head_.store(Head() - kOne, std::memory_order_relaxed);
  }
  // Who has the only reference needs no exchange with others: none of them can come by another.
  void Release() const {
    UInt64 const head = head_.load(std::memory_order_acquire);
    if (IsConstant(head)) return;
    if (head < 2 * kOne || head_.fetch_sub(kOne, std::memory_order_acq_rel) < 2 * kOne) Destroy();
  }
  CFIndex count() const { return static_cast<CFIndex>(Head() / kOne); }

 protected:
  struct Constant {};
  constexpr CFObject(Constant, CFTypeNumber type, UInt8 variant = 0) noexcept
      : head_(kOne | static_cast<UInt64>(variant) << 8 | static_cast<UInt64>(Memory::kStatic) |
              static_cast<UInt64>(type)) {}

 private:
  // Where an object's memory came from and goes back to, beside the type.
  enum class Memory : UInt64 {
    kNew = 0 << 6,
    kBlock = 1 << 6,
    kMalloced = 2 << 6,
    kStatic = 3 << 6
  };
  static constexpr UInt64 kTypeMask = 0x3F, kMemoryMask = 0xC0;
  static constexpr UInt64 kOne = 1 << 16;

  template <typename Object, typename... Arguments>
  static Object* MakeAt(void* place, Memory memory, Arguments&&... arguments) {
    auto* const object = ::new (place) Object(std::forward<Arguments>(arguments)...);
    object->head_.store(object->Head() | static_cast<UInt64>(memory), std::memory_order_relaxed);
    return object;
  }

  static bool IsConstant(UInt64 head) {
    return (head & kMemoryMask) == static_cast<UInt64>(Memory::kStatic);
  }
  UInt64 Head() const { return head_.load(std::memory_order_relaxed); }
  // Objects released by the destructor of another wait until it is done, so that an object of any
  // depth ends with a flat stack.
  void Destroy() const;
  void End() const;

  // Count, variant and type in one word, because files hold small objects by the million. Of an
  // object that waits for its end, the next that waits.
  mutable std::atomic<UInt64> head_;
};

// An object that is a constant: it lies in static storage, is there before any code runs, and has
// no end. Nobody counts the references to it.
template <typename Object>
union CFConstant {
  template <typename... Arguments>
  explicit constexpr CFConstant(Arguments... arguments) : object(arguments...) {}
  constexpr ~CFConstant() {}
  Object object;
};
