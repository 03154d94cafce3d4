#include "evaluator/registry.h"

#include <new>
#include <type_traits>
#include <utility>

namespace gatotu {

constinit Registry registry;
static_assert(std::is_trivially_destructible_v<Registry>,
              "plug-ins withdraw their registrations after our destructors would have run");

namespace {

void Append(RecordList& list, Record& record) {
  record.previous = list.tail;
  record.next = nullptr;
  (list.tail != nullptr ? list.tail->next : list.head) = &record;
  list.tail = &record;
  ++list.count;
}

void Remove(RecordList& list, Record& record) {
  (record.previous != nullptr ? record.previous->next : list.head) = record.next;
  (record.next != nullptr ? record.next->previous : list.tail) = record.previous;
  record.tag = RecordTag::kNone;
  --list.count;
}

bool IsRegistered(void const* handle) {
  RecordTag tag = static_cast<Record const*>(handle)->tag;
  return tag >= RecordTag::kType && tag <= RecordTag::kCache;
}

char const* OrEmpty(char const* name) { return name != nullptr ? name : ""; }

template <class Kind>
bool Register(RecordList& list, RecordTag tag, void* handle, unsigned long reserved,
              Kind contents) {
  if (handle == nullptr || reserved < sizeof(Kind)) return false;
  std::lock_guard lock(registry.mutex);
  if (IsRegistered(handle)) return false;
  contents.tag = tag;
  Append(list, *new (handle) Kind(contents));
  ++registry.revision;
  return true;
}

bool Unregister(RecordList& list, void* handle, RecordTag tag, RecordTag other_tag) {
  if (handle == nullptr) return false;
  std::lock_guard lock(registry.mutex);
  auto& record = *static_cast<Record*>(handle);
  if (record.tag != tag && record.tag != other_tag) return false;
  Remove(list, record);
  ++registry.revision;
  ++registry.generation;
  return true;
}

}  // namespace
}  // namespace gatotu

using namespace gatotu;

bool Register_Type(void* handle, unsigned long reserved, char const* type_name,
                   unsigned long value_size, InspectorDestroy destroy, char const* base_type_name,
                   int fingerprinting) {
  return Register(
      registry.types, RecordTag::kType, handle, reserved,
      TypeRecord{
          {}, OrEmpty(type_name), OrEmpty(base_type_name), value_size, destroy, fingerprinting});
}

bool Register_Property(void* handle, unsigned long reserved, char const* singular,
                       char const* plural, char const* parameter_type,
                       char const* direct_object_type, char const* result_type, InspectorGet get,
                       void const* context, FingerprintFunction fingerprint) {
  return Register(registry.properties, RecordTag::kProperty, handle, reserved,
                  PropertyRecord{{},
                                 OrEmpty(singular),
                                 OrEmpty(plural),
                                 OrEmpty(parameter_type),
                                 OrEmpty(direct_object_type),
                                 OrEmpty(result_type),
                                 0,
                                 nullptr,
                                 nullptr,
                                 get,
                                 nullptr,
                                 context,
                                 fingerprint});
}

bool Register_Iterated_Property(void* handle, unsigned long reserved, char const* singular,
                                char const* plural, char const* parameter_type,
                                char const* direct_object_type, char const* result_type,
                                unsigned long state_size, InspectorConstruct construct,
                                InspectorDestroy destroy, InspectorGet first, InspectorGet next,
                                void const* context, FingerprintFunction fingerprint) {
  return Register(registry.properties, RecordTag::kIterated, handle, reserved,
                  PropertyRecord{{},
                                 OrEmpty(singular),
                                 OrEmpty(plural),
                                 OrEmpty(parameter_type),
                                 OrEmpty(direct_object_type),
                                 OrEmpty(result_type),
                                 state_size,
                                 construct,
                                 destroy,
                                 first,
                                 next,
                                 context,
                                 fingerprint});
}

bool Register_Cast(void* handle, unsigned long reserved, char const* cast_name,
                   char const* source_type, char const* result_type, InspectorCast cast,
                   void const* context, FingerprintFunction fingerprint) {
  return Register(registry.casts, RecordTag::kCast, handle, reserved,
                  CastRecord{{},
                             OrEmpty(cast_name),
                             OrEmpty(source_type),
                             OrEmpty(result_type),
                             cast,
                             context,
                             fingerprint});
}

bool Register_Binary_Operator(void* handle, unsigned long reserved, int operator_code,
                              char const* left_type, char const* right_type,
                              char const* result_type, InspectorOperator apply, void const* context,
                              FingerprintFunction fingerprint) {
  return Register(registry.operators, RecordTag::kOperator, handle, reserved,
                  OperatorRecord{{},
                                 operator_code,
                                 OrEmpty(left_type),
                                 OrEmpty(right_type),
                                 OrEmpty(result_type),
                                 apply,
                                 context,
                                 fingerprint});
}

bool Register_Cache(void* handle, unsigned long reserved, InspectorCacheClear clear,
                    void* context) {
  return Register(registry.caches, RecordTag::kCache, handle, reserved,
                  CacheRecord{{}, clear, context});
}

bool Unregister_Type(void* handle) {
  return Unregister(registry.types, handle, RecordTag::kType, RecordTag::kType);
}
bool Unregister_Property(void* handle) {
  return Unregister(registry.properties, handle, RecordTag::kProperty, RecordTag::kIterated);
}
bool Unregister_Cast(void* handle) {
  return Unregister(registry.casts, handle, RecordTag::kCast, RecordTag::kCast);
}
bool Unregister_Binary_Operator(void* handle) {
  return Unregister(registry.operators, handle, RecordTag::kOperator, RecordTag::kOperator);
}
bool Unregister_Cache(void* handle) {
  return Unregister(registry.caches, handle, RecordTag::kCache, RecordTag::kCache);
}
