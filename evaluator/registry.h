// What plug-ins have registered, kept in the blocks that their registration objects reserve at
// their head: no allocation, no destructor, usable before any static initialiser has run.
//
// The records hold just what was passed; names are resolved when an index is built from them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "evaluator/plugin/entry_points.h"

namespace gatotu {

// Which list a record is in. Stands in the record as a word that no unregistered block holds by
// chance, so that a handle can be recognised.
enum class RecordTag : std::uint64_t {
  kNone = 0,
  kType = 0x676174'4f54'5531,
  kProperty,
  kIterated,
  kCast,
  kOperator,
  kCache,
};

struct Record {
  Record* previous = nullptr;
  Record* next = nullptr;
  RecordTag tag = RecordTag::kNone;
};

struct TypeRecord : Record {
  char const* name;
  char const* base;
  unsigned long size;
  InspectorDestroy destroy;
  int fingerprinting;
};

// Plain and iterated properties; a plain one has its adapter in `first`, and no state.
struct PropertyRecord : Record {
  char const* singular;
  char const* plural;
  char const* parameter;
  char const* object;
  char const* result;
  unsigned long state_size;
  InspectorConstruct construct;
  InspectorDestroy destroy;
  InspectorGet first;
  InspectorGet next_item;
  void const* context;
  FingerprintFunction fingerprint;
};

struct CastRecord : Record {
  char const* name;
  char const* source;
  char const* result;
  InspectorCast cast;
  void const* context;
  FingerprintFunction fingerprint;
};

struct OperatorRecord : Record {
  int code;
  char const* left;
  char const* right;
  char const* result;
  InspectorOperator apply;
  void const* context;
  FingerprintFunction fingerprint;
};

struct CacheRecord : Record {
  InspectorCacheClear clear;
  void* context;
};

inline constexpr unsigned long kTypeBlock = 512;
inline constexpr unsigned long kPropertyBlock = 128;
inline constexpr unsigned long kCacheBlock = 64;
static_assert(sizeof(TypeRecord) <= kTypeBlock && sizeof(PropertyRecord) <= kPropertyBlock &&
              sizeof(CastRecord) <= kPropertyBlock && sizeof(OperatorRecord) <= kPropertyBlock &&
              sizeof(CacheRecord) <= kCacheBlock);

// Records in the order of their registration.
struct RecordList {
  Record* head = nullptr;
  Record* tail = nullptr;
  std::size_t count = 0;
};

// Guards the registry and everything that runs inspectors: held for the whole of an evaluation.
// Recursive, because a value callback may evaluate, and loading a plug-in registers.
struct Registry {
  std::recursive_mutex mutex;
  RecordList types;
  RecordList properties;
  RecordList casts;
  RecordList operators;
  RecordList caches;
  std::uint64_t revision = 1;    // grows with every registration and unregistration
  std::uint64_t generation = 1;  // grows with every unregistration
};

extern Registry registry;

// The records of a list, in order, as their own kind.
template <class Kind, class Visitor>
void ForEachRecord(RecordList const& list, Visitor&& visit) {
  for (Record* record = list.head; record != nullptr; record = record->next) {
    visit(*static_cast<Kind*>(record));
  }
}

}  // namespace gatotu
