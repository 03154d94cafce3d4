// The evaluator as a plug-in sees it: registrations, memory, context and interruption.
//
// A handle is the address of a registration object whose first bytes (512 for a type, 128 for a
// property, cast or operator, 64 for a cache; the `reserved` argument) belong to the evaluator
// until the handle is unregistered. Names are NUL-terminated, live as long as the registration,
// and may name types that are registered later; "" stands for no parameter or for the world, a
// null or empty plural for none. Registering runs during static initialisation, in any order and
// on any thread; unregistering waits for a running evaluation. Each call tells whether it
// was carried out: a block that is too small or a handle registered twice is refused.
#pragma once

#include "evaluator/plugin/context.h"
#include "evaluator/plugin/export.h"
#include "evaluator/plugin/fingerprinter.h"
#include "evaluator/plugin/values.h"

extern "C" {

using InspectorDestroy = void (*)(void const* value);
using InspectorConstruct = void (*)(void* state);
// False: no value, `result` untouched. A null `result` asks only whether the property applies.
using InspectorGet = bool (*)(void* result, void const* parameter, void const* direct_object,
                              void* iterator_state, void const* context);
using InspectorCast = void (*)(void* result, void const* source, void const* context);
using InspectorOperator = void (*)(void* result, void const* left, void const* right,
                                   void const* context);
using InspectorCacheClear = void (*)(Instant& now, void* context);

// Codes of binary operators. The other comparisons and the negated words are made of these.
enum InspectorOperatorCode : int {
  kOperatorAdd = 1,
  kOperatorSubtract = 2,
  kOperatorMultiply = 3,
  kOperatorDivide = 4,
  kOperatorModulo = 5,
  kOperatorEqual = 6,
  kOperatorLess = 7,
  kOperatorJoin = 8,
  kOperatorContains = 9,
  kOperatorStartsWith = 10,
  kOperatorEndsWith = 11,
};

// What the evaluator may do with the values of a type beyond holding them where they stand.
enum InspectorFingerprinting : int {
  kNoFingerprinting = 0,
  // The value is its bytes and points to nothing: it may be copied, sorted and kept.
  kPlainBytes = 1,
};

// Values of a type are `value_size` bytes, at an address aligned for any object; a value of a
// derived type stands for its base by its address. `fingerprinting` is an
// `InspectorFingerprinting`.
GATOTU_API bool Register_Type(void* handle, unsigned long reserved, char const* type_name,
                              unsigned long value_size, InspectorDestroy destroy,
                              char const* base_type_name, int fingerprinting);
GATOTU_API bool Register_Property(void* handle, unsigned long reserved, char const* singular,
                                  char const* plural, char const* parameter_type,
                                  char const* direct_object_type, char const* result_type,
                                  InspectorGet get, void const* context,
                                  FingerprintFunction fingerprint);
GATOTU_API bool Register_Iterated_Property(
    void* handle, unsigned long reserved, char const* singular, char const* plural,
    char const* parameter_type, char const* direct_object_type, char const* result_type,
    unsigned long state_size, InspectorConstruct construct, InspectorDestroy destroy,
    InspectorGet first, InspectorGet next, void const* context, FingerprintFunction fingerprint);
GATOTU_API bool Register_Cast(void* handle, unsigned long reserved, char const* cast_name,
                              char const* source_type, char const* result_type, InspectorCast cast,
                              void const* context, FingerprintFunction fingerprint);
GATOTU_API bool Register_Binary_Operator(void* handle, unsigned long reserved, int operator_code,
                                         char const* left_type, char const* right_type,
                                         char const* result_type, InspectorOperator apply,
                                         void const* context, FingerprintFunction fingerprint);
GATOTU_API bool Register_Cache(void* handle, unsigned long reserved, InspectorCacheClear clear,
                               void* context);

GATOTU_API bool Unregister_Type(void* handle);
// Also for iterated properties.
GATOTU_API bool Unregister_Property(void* handle);
GATOTU_API bool Unregister_Cast(void* handle);
GATOTU_API bool Unregister_Binary_Operator(void* handle);
GATOTU_API bool Unregister_Cache(void* handle);

// Memory of the evaluator, aligned for any object. It lasts until what asked for the value it
// belongs to has consumed it, and at most until the evaluation ends; nobody frees it. Never
// null: throws `std::bad_alloc` where there is none.
GATOTU_API void* Allocate_Inspector_Memory(unsigned long size);

// The host's context, null where it supplies none.
GATOTU_API InspectorContext* Get_Generic_Inspector_Context();

// Leaves by an exception, of no class that an inspector knows, when the evaluation is to stop.
// Long scans call this once for each item.
GATOTU_API int Check_For_Inspector_Interruption();
}
