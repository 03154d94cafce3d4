// The roots of what an inspector may throw. All are thrown by value and caught by reference; the
// evaluator turns each into data before it lets go of the plug-in that threw it.
#pragma once

#include <cstdint>
#include <exception>
#include <typeinfo>

#include "evaluator/plugin/export.h"

// `what()` is the mangled name of the dynamic type: the classes carry no text of their own.
class GATOTU_API DebuggableException : public std::exception {
 public:
  char const* what() const noexcept override { return typeid(*this).name(); }
};

// The inspected object does not exist; also the end of an iteration.
class GATOTU_API NoSuchObject : public DebuggableException {};

// A system call failed with this status code of the operating system. Deliberately outside
// `DebuggableException`: a status is not a class of failure.
class GATOTU_API OSError {
 public:
  explicit OSError(std::int32_t code) : code_(code) {}
  std::int32_t Code() const { return code_; }

 private:
  std::int32_t code_;
};

// Memory could not be obtained.
class GATOTU_API MemoryError : public OSError {
 public:
  using OSError::OSError;
};

inline constexpr std::int32_t kMemoryFullStatus = -108;

class GATOTU_API MemoryFullError : public MemoryError {
 public:
  explicit MemoryFullError(std::int32_t code = kMemoryFullStatus) : MemoryError(code) {}
};

// `MemoryFullError` for the one status that means it, `OSError` for every other.
[[noreturn]] inline void ThrowRealOSError(std::int32_t code) {
  if (code == kMemoryFullStatus) throw MemoryFullError(code);
  throw OSError(code);
}
