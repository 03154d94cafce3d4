// `Prop` registers a property in the shape that its function's type tells:
//
//     T (*)()                                     of the world
//     R (*)(Of, O const&)                         of O
//     T (*)(inspector_string const&)              of the world, named
//     T (I::*)() twice                            of the world, iterated
//     T (I::*)(inspector_string const&) twice     of the world, iterated, named
//
// The iterated ones hold pointers to the members for the first and the further elements, and may
// have a start action and an end test. What `frame/registration.h` says of adapters holds here.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/type_name.h"
#include "frame/of.h"
#include "frame/registration.h"
#include "frame/registration_block.h"

class Prop;

// The adapters: each is the typed data behind a `Prop`'s block, and the callbacks that use it.

template <class T>
struct PropertyOfWorld {
  T (*function)();

  static bool Get(void* result, void const*, void const*, void*, void const* context);
};

template <class R, class O>
struct PropertyOfObject {
  R (*function)(Of, O const&);

  static bool Get(void* result, void const*, void const* object, void*, void const* context);
};

template <class T, class Index>
struct PropertyByIndexOfWorld {
  T (*function)(Index const&);

  static bool Get(void* result, void const* parameter, void const*, void*, void const* context);
};

template <class I, class T>
struct IteratedPropertyOfWorld {
  T (I::*first)();
  T (I::*next)();
  void (I::*start)();  // null, or called on the iterator before anything else of `First`
  bool (I::*end)();    // null, or whether there is no further element

  static bool First(void* result, void const*, void const*, void* state, void const* context);
  static bool Next(void* result, void const*, void const*, void* state, void const* context);
};

template <class I, class T, class Index>
struct IteratedPropertyByIndexOfWorld {
  T (I::*first)(Index const&);
  T (I::*next)(Index const&);
  void (I::*start)();
  bool (I::*end)();

  static bool First(void* result, void const* parameter, void const*, void* state,
                    void const* context);
  static bool Next(void* result, void const* parameter, void const*, void* state,
                   void const* context);
};

class Prop : public PropertyRegistrationBlock {
 public:
  template <class T>
  Prop(char const* singular, char const* plural, T (*function)(), FingerprintFunction fingerprint) {
    using Adapter = PropertyOfWorld<T>;
    Store(Adapter{function});
    Register(singular, plural, kNoType, kNoType, kTypeNameOf<T>, Adapter::Get, fingerprint);
  }

  template <class R, class O>
  Prop(char const* singular, char const* plural, R (*function)(Of, O const&),
       FingerprintFunction fingerprint) {
    using Adapter = PropertyOfObject<R, O>;
    Store(Adapter{function});
    Register(singular, plural, kNoType, kTypeNameOf<O>, kTypeNameOf<R>, Adapter::Get, fingerprint);
  }

  template <class T>
  Prop(char const* singular, char const* plural, T (*function)(inspector_string const&),
       FingerprintFunction fingerprint) {
    using Adapter = PropertyByIndexOfWorld<T, inspector_string>;
    Store(Adapter{function});
    Register(singular, plural, kTypeNameOf<inspector_string>, kNoType, kTypeNameOf<T>, Adapter::Get,
             fingerprint);
  }

  template <class I, class T>
  Prop(char const* singular, char const* plural, T (I::*first)(), T (I::*next)(),
       FingerprintFunction fingerprint, std::type_identity_t<void (I::*)()> start = nullptr,
       std::type_identity_t<bool (I::*)()> end = nullptr) {
    using Adapter = IteratedPropertyOfWorld<I, T>;
    Store(Adapter{first, next, start, end});
    RegisterIterator<I>(singular, plural, kNoType, kTypeNameOf<T>, Adapter::First, Adapter::Next,
                        fingerprint);
  }

  template <class I, class T>
  Prop(char const* singular, char const* plural, T (I::*first)(inspector_string const&),
       T (I::*next)(inspector_string const&), FingerprintFunction fingerprint,
       std::type_identity_t<void (I::*)()> start = nullptr,
       std::type_identity_t<bool (I::*)()> end = nullptr) {
    using Adapter = IteratedPropertyByIndexOfWorld<I, T, inspector_string>;
    Store(Adapter{first, next, start, end});
    RegisterIterator<I>(singular, plural, kTypeNameOf<inspector_string>, kTypeNameOf<T>,
                        Adapter::First, Adapter::Next, fingerprint);
  }

  // The adapter stored in the registration object that `context` points to.
  template <class Adapter>
  static Adapter const& Stored(void const* context) {
    unsigned char const* const data = static_cast<Prop const*>(context)->data_;
    return *std::launder(reinterpret_cast<Adapter const*>(data));
  }

 private:
  template <class Adapter>
  void Store(Adapter const& adapter) {
    static_assert(sizeof(Adapter) <= sizeof(data_));
    static_assert(std::is_trivially_destructible_v<Adapter>);
    new (data_) Adapter(adapter);
  }

  template <class I>
  void RegisterIterator(char const* singular, char const* plural, char const* parameter_type,
                        char const* result_type, InspectorGet first, InspectorGet next,
                        FingerprintFunction fingerprint) {
    RegisterIterated(singular, plural, parameter_type, kNoType, result_type, sizeof(I),
                     IteratorBasics<I>::Construct, IteratorBasics<I>::Destroy, first, next,
                     fingerprint);
  }

  // Four pointers to members of two words each.
  alignas(std::max_align_t) unsigned char data_[4 * 2 * sizeof(void*)];
};

template <class T>
bool PropertyOfWorld<T>::Get(void* result, void const*, void const*, void*, void const* context) {
  if (result != nullptr) new (result) T(Prop::Stored<PropertyOfWorld>(context).function());
  return true;
}

template <class R, class O>
bool PropertyOfObject<R, O>::Get(void* result, void const*, void const* object, void*,
                                 void const* context) {
  if (result == nullptr) return true;
  new (result)
      R(Prop::Stored<PropertyOfObject>(context).function(Of(), *static_cast<O const*>(object)));
  return true;
}

template <class T, class Index>
bool PropertyByIndexOfWorld<T, Index>::Get(void* result, void const* parameter, void const*, void*,
                                           void const* context) {
  if (result == nullptr) return true;
  new (result) T(Prop::Stored<PropertyByIndexOfWorld>(context).function(
      *static_cast<Index const*>(parameter)));
  return true;
}

template <class I, class T>
bool IteratedPropertyOfWorld<I, T>::First(void* result, void const*, void const*, void* state,
                                          void const* context) {
  auto const& members = Prop::Stored<IteratedPropertyOfWorld>(context);
  I& iterator = *static_cast<I*>(state);
  if (members.start != nullptr) (iterator.*members.start)();
  if (members.end != nullptr && (iterator.*members.end)()) return false;
  if (result != nullptr) new (result) T((iterator.*members.first)());
  return true;
}

template <class I, class T>
bool IteratedPropertyOfWorld<I, T>::Next(void* result, void const*, void const*, void* state,
                                         void const* context) {
  auto const& members = Prop::Stored<IteratedPropertyOfWorld>(context);
  I& iterator = *static_cast<I*>(state);
  if (members.end != nullptr && (iterator.*members.end)()) return false;
  if (result != nullptr) new (result) T((iterator.*members.next)());
  return true;
}

template <class I, class T, class Index>
bool IteratedPropertyByIndexOfWorld<I, T, Index>::First(void* result, void const* parameter,
                                                        void const*, void* state,
                                                        void const* context) {
  auto const& members = Prop::Stored<IteratedPropertyByIndexOfWorld>(context);
  I& iterator = *static_cast<I*>(state);
  if (members.start != nullptr) (iterator.*members.start)();
  if (members.end != nullptr && (iterator.*members.end)()) return false;
  if (result == nullptr) return true;
  new (result) T((iterator.*members.first)(*static_cast<Index const*>(parameter)));
  return true;
}

template <class I, class T, class Index>
bool IteratedPropertyByIndexOfWorld<I, T, Index>::Next(void* result, void const* parameter,
                                                       void const*, void* state,
                                                       void const* context) {
  auto const& members = Prop::Stored<IteratedPropertyByIndexOfWorld>(context);
  I& iterator = *static_cast<I*>(state);
  if (members.end != nullptr && (iterator.*members.end)()) return false;
  if (result == nullptr) return true;
  new (result) T((iterator.*members.next)(*static_cast<Index const*>(parameter)));
  return true;
}
