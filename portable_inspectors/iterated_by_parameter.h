// Iterated properties that take a parameter: `positions "x" of S`, `integers below 10`. The
// iterator's `First` and `Next` get the parameter, and the direct object where there is one; both
// end the sequence by throwing `NoSuchObject`.
#pragma once

#include "frame/registration.h"

template <class Iterator, class Parameter, class Object, class Result>
class IteratedPropertyByParameter : public PropertyRegistrationBlock {
 public:
  IteratedPropertyByParameter(char const* singular, char const* plural,
                              FingerprintFunction fingerprint)
      : PropertyRegistrationBlock(
            this, singular, plural, kTypeNameOf<Parameter>, kTypeNameOf<Object>,
            kTypeNameOf<Result>, sizeof(Iterator), IteratorBasics<Iterator>::Construct,
            IteratorBasics<Iterator>::Destroy, First, Next, this, fingerprint) {}

 private:
  static bool First(void* result, void const* parameter, void const* object, void* state,
                    void const*) {
    if (result == nullptr) return true;
    new (result) Result(static_cast<Iterator*>(state)->First(
        *static_cast<Parameter const*>(parameter), *static_cast<Object const*>(object)));
    return true;
  }
  static bool Next(void* result, void const* parameter, void const* object, void* state,
                   void const*) {
    if (result == nullptr) return true;
    new (result) Result(static_cast<Iterator*>(state)->Next(
        *static_cast<Parameter const*>(parameter), *static_cast<Object const*>(object)));
    return true;
  }
};

template <class Iterator, class Parameter, class Result>
class IteratedGlobalPropertyByParameter : public PropertyRegistrationBlock {
 public:
  IteratedGlobalPropertyByParameter(char const* singular, char const* plural,
                                    FingerprintFunction fingerprint)
      : PropertyRegistrationBlock(
            this, singular, plural, kTypeNameOf<Parameter>, kNoType, kTypeNameOf<Result>,
            sizeof(Iterator), IteratorBasics<Iterator>::Construct,
            IteratorBasics<Iterator>::Destroy, First, Next, this, fingerprint) {}

 private:
  static bool First(void* result, void const* parameter, void const*, void* state, void const*) {
    if (result == nullptr) return true;
    new (result)
        Result(static_cast<Iterator*>(state)->First(*static_cast<Parameter const*>(parameter)));
    return true;
  }
  static bool Next(void* result, void const* parameter, void const*, void* state, void const*) {
    if (result == nullptr) return true;
    new (result)
        Result(static_cast<Iterator*>(state)->Next(*static_cast<Parameter const*>(parameter)));
    return true;
  }
};
