// The inspector shapes: class templates whose global objects make a type, property, cast,
// operator or cache known to the evaluator for as long as they live.
//
//     Type<process, kNoFingerprinting> process_type;
//     Property<process, integer> process_pid("pid", "pids", pid_of_process, nullptr);
//
// Names are string literals or live as long. A fingerprint is null or `DependsOnlyOnParameters`.
// Type names come from `InspectorTypeName`, so a type may be registered by any library, in any
// order. An adapter hands every exception of its inspector on unchanged. Asked with a null result
// whether it applies, it answers without calling the inspector.
#pragma once

#include <cstdlib>
#include <new>
#include <type_traits>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/type_name.h"
#include "frame/registration_block.h"

// No parameter, or no direct object: a property of the world.
inline constexpr char const* kNoType = "";

template <class T>
inline constexpr char const* kTypeNameOf = InspectorTypeName<T>::kName;

template <class T, FingerprintingChoice choice = kNoFingerprinting>
class Type : public ReservedBlock<kTypeBlockSize> {
  static_assert(alignof(T) <= alignof(std::max_align_t));
  static_assert(choice != kPlainBytes || std::is_trivially_copyable_v<T>);

 public:
  Type() : Type(nullptr) {}
  ~Type() { Unregister_Type(this); }

 protected:
  explicit Type(char const* base_type_name) {
    Register_Type(this, kTypeBlockSize, kTypeNameOf<T>, sizeof(T),
                  InspectorTypeInfo<T, choice>::Destroy, base_type_name, choice);
  }
};

// A value of a derived type stands for its base by its address, so the base must lie at offset 0.
template <class T, class Base, FingerprintingChoice choice = kNoFingerprinting>
class DerivedType : public Type<T, choice> {
  static_assert(std::is_base_of_v<Base, T>);

 public:
  DerivedType() : Type<T, choice>(kTypeNameOf<Base>) {
    if (!BaseComesFirst()) std::abort();
  }

 private:
  // Not a constant expression in the language, but one to the compiler.
  static bool BaseComesFirst() {
    alignas(T) unsigned char place[sizeof(T)];
    T* const derived = reinterpret_cast<T*>(place);
    return static_cast<void*>(static_cast<Base*>(derived)) == static_cast<void*>(place);
  }
};

// ---- Properties -------------------------------------------------------------------------------

template <class T>
class GlobalProperty : public PropertyRegistrationBlock {
 public:
  using Function = T (*)();

  GlobalProperty(char const* singular, char const* plural, Function function,
                 FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kNoType, kNoType, kTypeNameOf<T>, Get, fingerprint);
  }

 private:
  static bool Get(void* result, void const*, void const*, void*, void const* context) {
    if (result == nullptr) return true;
    new (result) T(static_cast<GlobalProperty const*>(context)->function_());
    return true;
  }

  Function const function_;
};

template <class O, class R>
class Property : public PropertyRegistrationBlock {
 public:
  using Function = R (*)(O const&);

  Property(char const* singular, char const* plural, Function function,
           FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kNoType, kTypeNameOf<O>, kTypeNameOf<R>, Get, fingerprint);
  }

 private:
  static bool Get(void* result, void const*, void const* object, void*, void const* context) {
    if (result == nullptr) return true;
    new (result)
        R(static_cast<Property const*>(context)->function_(*static_cast<O const*>(object)));
    return true;
  }

  Function const function_;
};

// The parameter arrives as the start and the byte length of a string.
template <class T>
class NamedGlobalProperty : public PropertyRegistrationBlock {
 public:
  using Function = T (*)(unsigned char const*, unsigned long);

  NamedGlobalProperty(char const* singular, char const* plural, Function function,
                      FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kTypeNameOf<inspector_string>, kNoType, kTypeNameOf<T>, Get,
             fingerprint);
  }

 private:
  static bool Get(void* result, void const* parameter, void const*, void*, void const* context) {
    if (result == nullptr) return true;
    auto const& name = *static_cast<inspector_string const*>(parameter);
    new (result)
        T(static_cast<NamedGlobalProperty const*>(context)->function_(name.start, name.length));
    return true;
  }

  Function const function_;
};

template <class O, class R>
class NamedProperty : public PropertyRegistrationBlock {
 public:
  using Function = R (*)(unsigned char const*, unsigned long, O const&);

  NamedProperty(char const* singular, char const* plural, Function function,
                FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kTypeNameOf<inspector_string>, kTypeNameOf<O>, kTypeNameOf<R>, Get,
             fingerprint);
  }

 private:
  static bool Get(void* result, void const* parameter, void const* object, void*,
                  void const* context) {
    if (result == nullptr) return true;
    auto const& name = *static_cast<inspector_string const*>(parameter);
    new (result) R(static_cast<NamedProperty const*>(context)->function_(
        name.start, name.length, *static_cast<O const*>(object)));
    return true;
  }

  Function const function_;
};

// Numbered shapes have no item of a negative number, and say so even when asked only whether they
// apply.
template <class T>
class NumberedGlobalProperty : public PropertyRegistrationBlock {
 public:
  using Function = T (*)(unsigned long long);

  NumberedGlobalProperty(char const* singular, char const* plural, Function function,
                         FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kTypeNameOf<integer>, kNoType, kTypeNameOf<T>, Get, fingerprint);
  }

 private:
  static bool Get(void* result, void const* parameter, void const*, void*, void const* context) {
    integer const number = *static_cast<integer const*>(parameter);
    if (number < 0) return false;
    if (result == nullptr) return true;
    new (result) T(static_cast<NumberedGlobalProperty const*>(context)->function_(
        static_cast<unsigned long long>(number)));
    return true;
  }

  Function const function_;
};

template <class O, class R>
class NumberedProperty : public PropertyRegistrationBlock {
 public:
  using Function = R (*)(unsigned long long, O const&);

  NumberedProperty(char const* singular, char const* plural, Function function,
                   FingerprintFunction fingerprint)
      : function_(function) {
    Register(singular, plural, kTypeNameOf<integer>, kTypeNameOf<O>, kTypeNameOf<R>, Get,
             fingerprint);
  }

 private:
  static bool Get(void* result, void const* parameter, void const* object, void*,
                  void const* context) {
    integer const number = *static_cast<integer const*>(parameter);
    if (number < 0) return false;
    if (result == nullptr) return true;
    new (result) R(static_cast<NumberedProperty const*>(context)->function_(
        static_cast<unsigned long long>(number), *static_cast<O const*>(object)));
    return true;
  }

  Function const function_;
};

// ---- Iterated properties ----------------------------------------------------------------------
//
// An iterator class has `First` and `Next`, given the direct object or the name where the shape
// has one. Either ends the sequence by throwing `NoSuchObject`.

template <class I, class T>
class IteratedGlobalProperty : public PropertyRegistrationBlock {
 public:
  IteratedGlobalProperty(char const* singular, char const* plural, FingerprintFunction fingerprint)
      : PropertyRegistrationBlock(this, singular, plural, kNoType, kNoType, kTypeNameOf<T>,
                                  sizeof(I), IteratorBasics<I>::Construct,
                                  IteratorBasics<I>::Destroy, First, Next, this, fingerprint) {}

 private:
  static bool First(void* result, void const*, void const*, void* state, void const*) {
    if (result != nullptr) new (result) T(static_cast<I*>(state)->First());
    return true;
  }
  static bool Next(void* result, void const*, void const*, void* state, void const*) {
    if (result != nullptr) new (result) T(static_cast<I*>(state)->Next());
    return true;
  }
};

template <class I, class O, class T>
class IteratedProperty : public PropertyRegistrationBlock {
 public:
  IteratedProperty(char const* singular, char const* plural, FingerprintFunction fingerprint)
      : PropertyRegistrationBlock(this, singular, plural, kNoType, kTypeNameOf<O>, kTypeNameOf<T>,
                                  sizeof(I), IteratorBasics<I>::Construct,
                                  IteratorBasics<I>::Destroy, First, Next, this, fingerprint) {}

 private:
  static bool First(void* result, void const*, void const* object, void* state, void const*) {
    if (result != nullptr) {
      new (result) T(static_cast<I*>(state)->First(*static_cast<O const*>(object)));
    }
    return true;
  }
  static bool Next(void* result, void const*, void const* object, void* state, void const*) {
    if (result != nullptr) {
      new (result) T(static_cast<I*>(state)->Next(*static_cast<O const*>(object)));
    }
    return true;
  }
};

template <class I, class T>
class IteratedNamedGlobalProperty : public PropertyRegistrationBlock {
 public:
  IteratedNamedGlobalProperty(char const* singular, char const* plural,
                              FingerprintFunction fingerprint)
      : PropertyRegistrationBlock(this, singular, plural, kTypeNameOf<inspector_string>, kNoType,
                                  kTypeNameOf<T>, sizeof(I), IteratorBasics<I>::Construct,
                                  IteratorBasics<I>::Destroy, First, Next, this, fingerprint) {}

 private:
  static bool First(void* result, void const* parameter, void const*, void* state, void const*) {
    if (result == nullptr) return true;
    auto const& name = *static_cast<inspector_string const*>(parameter);
    new (result) T(static_cast<I*>(state)->First(name.start, name.length));
    return true;
  }
  static bool Next(void* result, void const* parameter, void const*, void* state, void const*) {
    if (result == nullptr) return true;
    auto const& name = *static_cast<inspector_string const*>(parameter);
    new (result) T(static_cast<I*>(state)->Next(name.start, name.length));
    return true;
  }
};

// ---- Casts, operators, caches -----------------------------------------------------------------

// `cast_name` is the word after "as"; it need not be the result type's name.
template <class S, class R>
class Cast : public ReservedBlock<kPropertyBlockSize> {
 public:
  using Function = R (*)(S const&);

  Cast(char const* cast_name, Function function, FingerprintFunction fingerprint)
      : function_(function) {
    Register_Cast(this, kPropertyBlockSize, cast_name, kTypeNameOf<S>, kTypeNameOf<R>, Thunk, this,
                  fingerprint);
  }
  ~Cast() { Unregister_Cast(this); }

 private:
  static void Thunk(void* result, void const* source, void const* context) {
    if (result == nullptr) return;
    new (result) R(static_cast<Cast const*>(context)->function_(*static_cast<S const*>(source)));
  }

  Function const function_;
};

// `operator_code` is an `InspectorOperatorCode`.
template <class L, class R, class Res>
class Operator2 : public ReservedBlock<kPropertyBlockSize> {
 public:
  using Function = Res (*)(L const&, R const&);

  Operator2(int operator_code, Function function, FingerprintFunction fingerprint)
      : function_(function) {
    Register_Binary_Operator(this, kPropertyBlockSize, operator_code, kTypeNameOf<L>,
                             kTypeNameOf<R>, kTypeNameOf<Res>, Thunk, this, fingerprint);
  }
  ~Operator2() { Unregister_Binary_Operator(this); }

 private:
  static void Thunk(void* result, void const* left, void const* right, void const* context) {
    if (result == nullptr) return;
    new (result) Res(static_cast<Operator2 const*>(context)->function_(
        *static_cast<L const*>(left), *static_cast<R const*>(right)));
  }

  Function const function_;
};

// Equality, by `operator==` unless another relation is given.
template <class L, class R>
class RelationEqual : public Operator2<L, R, boolean> {
 public:
  using Function = boolean (*)(L const&, R const&);

  explicit RelationEqual(FingerprintFunction fingerprint, Function equal = Equal)
      : Operator2<L, R, boolean>(kOperatorEqual, equal, fingerprint) {}

  static boolean Equal(L const& left, R const& right) { return left == right; }
};

// A cache that the evaluator empties when its facts may be stale.
class CacheRegistration : public ReservedBlock<kCacheBlockSize> {
 public:
  explicit CacheRegistration(InspectorCacheClear clear) {
    Register_Cache(this, kCacheBlockSize, clear, nullptr);
  }
  ~CacheRegistration() { Unregister_Cache(this); }
};
