#include "portable/macintosh/mutex.h"

#include <cassert>

namespace MacintoshPlatform {
namespace {

void Check(int code) {
  if (code != 0) throw MutexError(code);
}

}  // namespace

// Holds the inner mutex.
class Mutex::Guard {
 public:
  explicit Guard(Mutex const& mutex) : inner_(mutex.mutex_) {
    Check(::pthread_mutex_lock(&inner_));
  }
  ~Guard() { ::pthread_mutex_unlock(&inner_); }
  Guard(Guard const&) = delete;
  Guard& operator=(Guard const&) = delete;

 private:
  pthread_mutex_t& inner_;
};

Mutex::Mutex() {
  Check(::pthread_mutex_init(&mutex_, nullptr));
  if (int const code = ::pthread_cond_init(&released_, nullptr); code != 0) {
    ::pthread_mutex_destroy(&mutex_);
    throw MutexError(code);
  }
}

Mutex::~Mutex() {
  ::pthread_cond_destroy(&released_);
  ::pthread_mutex_destroy(&mutex_);
}

bool Mutex::Available() const {
  Guard const guard(*this);
  return IsAvailable();
}

bool Mutex::IsAvailable() const {
  return count_ == 0 || ::pthread_equal(owner_, ::pthread_self()) != 0;
}

void Mutex::Take() {
  ++count_;
  owner_ = ::pthread_self();
}

Mutex* WaitForMutex(Mutex& mutex) {
  Mutex::Guard const guard(mutex);
  while (!mutex.IsAvailable()) Check(::pthread_cond_wait(&mutex.released_, &mutex.mutex_));
  mutex.Take();
  return &mutex;
}

Mutex* TryMutex(Mutex& mutex) {
  Mutex::Guard const guard(mutex);
  if (!mutex.IsAvailable()) return nullptr;
  mutex.Take();
  return &mutex;
}

void ReleaseMutex(Mutex* mutex) {
  if (mutex == nullptr) return;
  Mutex::Guard const guard(*mutex);
  assert(mutex->count_ > 0 && mutex->IsAvailable());
  if (--mutex->count_ == 0) Check(::pthread_cond_signal(&mutex->released_));
}

}  // namespace MacintoshPlatform
