// What every registration object begins with, and the callbacks that depend on a class alone.
//
// A registration object is a global. Its head is a block that belongs to the evaluator; the typed
// data of its shape stand behind it. The object's own address is both its handle and the context
// of its adapters, so it is neither copied nor moved. What a `Register_` call answers is ignored:
// a refused object stays in place and is withdrawn like any other.
#pragma once

#include <cstddef>
#include <new>

#include "evaluator/plugin/entry_points.h"

inline constexpr unsigned long kTypeBlockSize = 512;
inline constexpr unsigned long kPropertyBlockSize = 128;  // also casts and binary operators
inline constexpr unsigned long kCacheBlockSize = 64;

template <unsigned long Size>
class ReservedBlock {
 public:
  ReservedBlock() = default;
  ReservedBlock(ReservedBlock const&) = delete;
  ReservedBlock& operator=(ReservedBlock const&) = delete;

 private:
  alignas(std::max_align_t) unsigned char bytes_[Size];
};

// The head of every property shape; withdraws the property at the end of its life.
class PropertyRegistrationBlock : public ReservedBlock<kPropertyBlockSize> {
 public:
  // Registers an iterated property whose shape has no typed data. `handle` is this object.
  PropertyRegistrationBlock(void* handle, char const* singular, char const* plural,
                            char const* parameter_type, char const* direct_object_type,
                            char const* result_type, unsigned long state_size,
                            InspectorConstruct construct, InspectorDestroy destroy,
                            InspectorGet first, InspectorGet next, void const* context,
                            FingerprintFunction fingerprint);
  ~PropertyRegistrationBlock();

 protected:
  // For shapes with typed data, which register once those stand: an evaluation on another thread
  // may use a property as soon as it is registered.
  PropertyRegistrationBlock() = default;

  void Register(char const* singular, char const* plural, char const* parameter_type,
                char const* direct_object_type, char const* result_type, InspectorGet get,
                FingerprintFunction fingerprint);
  void RegisterIterated(char const* singular, char const* plural, char const* parameter_type,
                        char const* direct_object_type, char const* result_type,
                        unsigned long state_size, InspectorConstruct construct,
                        InspectorDestroy destroy, InspectorGet first, InspectorGet next,
                        FingerprintFunction fingerprint);
};

using FingerprintingChoice = InspectorFingerprinting;

template <class T, FingerprintingChoice>
struct InspectorTypeInfo {
  static void Destroy(void const* value) { static_cast<T const*>(value)->~T(); }
};

// An iterator lives in storage of the evaluator, from before `First` until the iteration ends,
// fails or is abandoned.
template <class I>
struct IteratorBasics {
  static_assert(alignof(I) <= alignof(std::max_align_t));

  static void Construct(void* state) {
    if (state != nullptr) new (state) I();
  }
  static void Destroy(void const* state) { static_cast<I const*>(state)->~I(); }
};
