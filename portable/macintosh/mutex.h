// A lock that the thread which holds it may take again.
#pragma once

#include <pthread.h>

#include "evaluator/plugin/exceptions.h"

namespace MacintoshPlatform {

// A call of the thread library failed, with this number.
class GATOTU_API MutexError : public DebuggableException {
 public:
  explicit MutexError(int code) : code_(code) {}
  int Code() const { return code_; }

 private:
  int code_;
};

// Whoever takes it gives it back as often. Every call may throw `MutexError`.
class GATOTU_API Mutex {
 public:
  Mutex();
  ~Mutex();
  Mutex(Mutex const&) = delete;
  Mutex& operator=(Mutex const&) = delete;

  // Whether the calling thread could take it at once.
  bool Available() const;

 private:
  class Guard;
  friend GATOTU_API Mutex* WaitForMutex(Mutex& mutex);
  friend GATOTU_API Mutex* TryMutex(Mutex& mutex);
  friend GATOTU_API void ReleaseMutex(Mutex* mutex);

  bool IsAvailable() const;
  void Take();

  // Of what is below it; never held beyond one call.
  mutable pthread_mutex_t mutex_;
  pthread_cond_t released_;
  pthread_t owner_{};  // only while the count is not 0
  unsigned long count_ = 0;
};

// Both return the mutex, now held by the calling thread.
GATOTU_API Mutex* WaitForMutex(Mutex& mutex);
// Null when another thread holds it.
GATOTU_API Mutex* TryMutex(Mutex& mutex);
// By the thread that holds it. Null is ignored.
GATOTU_API void ReleaseMutex(Mutex* mutex);

}  // namespace MacintoshPlatform
