#include "tests/support/recording_evaluator.h"

#include <cstring>
#include <sstream>

namespace {

std::string Text(char const* text) { return text == nullptr ? "(null)" : text; }

RecordedRegistration& Record(char const* call, void* handle, unsigned long reserved,
                             void const* context) {
  auto& registered = RecordingEvaluator::Instance().registered;
  registered.push_back({.call = call, .handle = handle, .reserved = reserved, .context = context});
  return registered.back();
}

// The names of a property, cast or operator.
void SetNames(RecordedRegistration& registration, std::string const& name,
              std::string const& parameter, std::string const& object, std::string const& result) {
  registration.name = name;
  registration.parameter = parameter;
  registration.object = object;
  registration.result = result;
}

bool RecordWithdrawal(char const* call, void* handle) {
  RecordingEvaluator::Instance().withdrawn.emplace_back(call, handle);
  return true;
}

}  // namespace

RecordingEvaluator& RecordingEvaluator::Instance() {
  static auto* const instance = std::make_unique<RecordingEvaluator>().release();
  return *instance;
}

void* RecordingEvaluator::Allocate(unsigned long size) {
  allocations.push_back(size);
  // Of just that size, so that a sanitizer sees an overrun.
  return memory_.emplace_back(std::make_unique<unsigned char[]>(size)).get();
}

RecordedRegistration const* RecordingEvaluator::Find(void const* handle) const {
  for (auto const& candidate : registered) {
    if (candidate.handle == handle) return &candidate;
  }
  return nullptr;
}

RecordedRegistration const* RecordingEvaluator::Find(std::string const& call,
                                                     std::string const& name,
                                                     std::string const& object) const {
  for (auto const& candidate : registered) {
    if (candidate.call == call && candidate.name == name && candidate.object == object) {
      return &candidate;
    }
  }
  return nullptr;
}

std::string RecordedRegistration::Text() const {
  Fingerprinter fingerprinter;
  if (fingerprint != nullptr) fingerprint(fingerprinter);
  std::ostringstream text;
  text << call << ' ' << reserved << ' ' << name << '/' << plural << " (" << parameter << ") of ("
       << object << "): " << result;
  if (size != 0) text << " size " << size;
  if (fingerprinting != 0) text << " fingerprinting " << fingerprinting;
  if (context == handle) text << " self";
  if (fingerprinter.IsParametersOnly()) text << " DOP";
  return text.str();
}

RawStorage::RawStorage(unsigned long size)
    : bytes_(std::make_unique<std::max_align_t[]>(size / sizeof(std::max_align_t) + 1)) {
  std::memset(static_cast<void*>(bytes_.get()), 0xA5, size);
}

bool Register_Type(void* handle, unsigned long reserved, char const* type_name,
                   unsigned long value_size, InspectorDestroy destroy, char const* base_type_name,
                   int fingerprinting) {
  RecordedRegistration& type = Record("Type", handle, reserved, nullptr);
  SetNames(type, type_name, "", Text(base_type_name), "");
  type.size = value_size;
  type.destroy = destroy;
  type.fingerprinting = fingerprinting;
  return true;
}

bool Register_Property(void* handle, unsigned long reserved, char const* singular,
                       char const* plural, char const* parameter_type,
                       char const* direct_object_type, char const* result_type, InspectorGet get,
                       void const* context, FingerprintFunction fingerprint) {
  RecordedRegistration& property = Record("Property", handle, reserved, context);
  SetNames(property, singular, parameter_type, direct_object_type, result_type);
  property.plural = Text(plural);
  property.get = get;
  property.fingerprint = fingerprint;
  return true;
}

bool Register_Iterated_Property(void* handle, unsigned long reserved, char const* singular,
                                char const* plural, char const* parameter_type,
                                char const* direct_object_type, char const* result_type,
                                unsigned long state_size, InspectorConstruct construct,
                                InspectorDestroy destroy, InspectorGet first, InspectorGet next,
                                void const* context, FingerprintFunction fingerprint) {
  RecordedRegistration& property = Record("Iterated_Property", handle, reserved, context);
  SetNames(property, singular, parameter_type, direct_object_type, result_type);
  property.plural = Text(plural);
  property.size = state_size;
  property.construct = construct;
  property.destroy = destroy;
  property.get = first;
  property.next = next;
  property.fingerprint = fingerprint;
  return true;
}

bool Register_Cast(void* handle, unsigned long reserved, char const* cast_name,
                   char const* source_type, char const* result_type, InspectorCast cast,
                   void const* context, FingerprintFunction fingerprint) {
  RecordedRegistration& registration = Record("Cast", handle, reserved, context);
  SetNames(registration, cast_name, "", source_type, result_type);
  registration.cast = cast;
  registration.fingerprint = fingerprint;
  return true;
}

bool Register_Binary_Operator(void* handle, unsigned long reserved, int operator_code,
                              char const* left_type, char const* right_type,
                              char const* result_type, InspectorOperator apply, void const* context,
                              FingerprintFunction fingerprint) {
  RecordedRegistration& registration = Record("Binary_Operator", handle, reserved, context);
  SetNames(registration, std::to_string(operator_code), right_type, left_type, result_type);
  registration.apply = apply;
  registration.fingerprint = fingerprint;
  return true;
}

bool Register_Cache(void* handle, unsigned long reserved, InspectorCacheClear clear,
                    void* context) {
  Record("Cache", handle, reserved, context).clear = clear;
  return true;
}

bool Unregister_Type(void* handle) { return RecordWithdrawal("Type", handle); }
bool Unregister_Property(void* handle) { return RecordWithdrawal("Property", handle); }
bool Unregister_Cast(void* handle) { return RecordWithdrawal("Cast", handle); }
bool Unregister_Binary_Operator(void* handle) {
  return RecordWithdrawal("Binary_Operator", handle);
}
bool Unregister_Cache(void* handle) { return RecordWithdrawal("Cache", handle); }

void* Allocate_Inspector_Memory(unsigned long size) {
  return RecordingEvaluator::Instance().Allocate(size);
}
InspectorContext* Get_Generic_Inspector_Context() { return RecordingEvaluator::Instance().context; }
int Check_For_Inspector_Interruption() {
  return ++RecordingEvaluator::Instance().interruption_checks;
}
