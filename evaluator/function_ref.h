// A reference to something callable, two words, without ownership: the callable outlives the call
// it is handed to. Used where a std::function would allocate.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace gatotu {

template <class Signature>
class FunctionRef;

template <class Result, class... Arguments>
class FunctionRef<Result(Arguments...)> {
 public:
  template <class Callable,
            std::enable_if_t<!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef> &&
                                 std::is_invocable_r_v<Result, Callable&, Arguments...>,
                             int> = 0>
  FunctionRef(Callable&& callable)  // NOLINT(google-explicit-constructor)
      : object_(AddressOf(callable)), call_([](void* object, Arguments... arguments) -> Result {
          using Object = std::remove_reference_t<Callable>;
          return (*reinterpret_cast<Object*>(object))(std::forward<Arguments>(arguments)...);
        }) {}

  Result operator()(Arguments... arguments) const {
    return call_(object_, std::forward<Arguments>(arguments)...);
  }

 private:
  // Of an object or of a function, which POSIX lets share one kind of address.
  template <class Callable>
  static void* AddressOf(Callable& callable) {
    return const_cast<void*>(reinterpret_cast<void const*>(std::addressof(callable)));
  }

  void* object_;
  Result (*call_)(void*, Arguments...);
};

}  // namespace gatotu
