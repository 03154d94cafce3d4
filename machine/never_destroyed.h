// A value that outlives every exit-time destructor: whoever still asks while the process ends finds
// it whole. Meant for function-level statics; what it owns stays reachable and is never freed.
#pragma once

#include <new>
#include <utility>

namespace machine {

template <typename T>
class NeverDestroyed {
 public:
  template <typename... Arguments>
  explicit NeverDestroyed(Arguments&&... arguments) {
    ::new (static_cast<void*>(storage_)) T(std::forward<Arguments>(arguments)...);
  }
  NeverDestroyed(NeverDestroyed const&) = delete;
  NeverDestroyed& operator=(NeverDestroyed const&) = delete;

  T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }
  T* operator->() { return &**this; }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace machine
