#include "tests/support/recording_evaluator.h"

#include <algorithm>
#include <sstream>

namespace {

std::string Text(char const* text) { return text == nullptr ? "(null)" : text; }

RecordedRegistration& Record(RecordedRegistration registration) {
  return RecordingEvaluator::Instance().registered.emplace_back(std::move(registration));
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
  auto const found = std::ranges::find(registered, handle, &RecordedRegistration::handle);
  return found == registered.end() ? nullptr : &*found;
}

RecordedRegistration const* RecordingEvaluator::Find(std::string const& call,
                                                     std::string const& name,
                                                     std::string const& object) const {
  for (auto const& each : registered) {
    if (each.call == call && each.name == name && each.object == object) return &each;
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

bool Register_Type(void* handle, unsigned long reserved, char const* type_name,
                   unsigned long value_size, InspectorDestroy destroy, char const* base_type_name,
                   int fingerprinting) {
  RecordedRegistration& type =
      Record({"Type", handle, reserved, nullptr, nullptr, type_name, "", Text(base_type_name)});
  type.size = value_size;
  type.destroy = destroy;
  type.fingerprinting = fingerprinting;
  return true;
}

bool Register_Property(void* handle, unsigned long reserved, char const* singular,
                       char const* plural, char const* parameter_type,
                       char const* direct_object_type, char const* result_type, InspectorGet get,
                       void const* context, FingerprintFunction fingerprint) {
  Record({"Property", handle, reserved, context, fingerprint, singular, parameter_type,
          direct_object_type, result_type, Text(plural)})
      .get = get;
  return true;
}

bool Register_Iterated_Property(void* handle, unsigned long reserved, char const* singular,
                                char const* plural, char const* parameter_type,
                                char const* direct_object_type, char const* result_type,
                                unsigned long state_size, InspectorConstruct construct,
                                InspectorDestroy destroy, InspectorGet first, InspectorGet next,
                                void const* context, FingerprintFunction fingerprint) {
  Register_Property(handle, reserved, singular, plural, parameter_type, direct_object_type,
                    result_type, first, context, fingerprint);
  RecordedRegistration& property = RecordingEvaluator::Instance().registered.back();
  property.call = "Iterated_Property";
  property.size = state_size;
  property.construct = construct;
  property.destroy = destroy;
  property.next = next;
  return true;
}

bool Register_Cast(void* handle, unsigned long reserved, char const* cast_name,
                   char const* source_type, char const* result_type, InspectorCast cast,
                   void const* context, FingerprintFunction fingerprint) {
  Record({"Cast", handle, reserved, context, fingerprint, cast_name, "", source_type, result_type})
      .cast = cast;
  return true;
}

bool Register_Binary_Operator(void* handle, unsigned long reserved, int operator_code,
                              char const* left_type, char const* right_type,
                              char const* result_type, InspectorOperator apply, void const* context,
                              FingerprintFunction fingerprint) {
  Record({"Binary_Operator", handle, reserved, context, fingerprint, std::to_string(operator_code),
          right_type, left_type, result_type})
      .apply = apply;
  return true;
}

bool Register_Cache(void* handle, unsigned long reserved, InspectorCacheClear, void* context) {
  Record({"Cache", handle, reserved, context});
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
  if (auto const& on_check = RecordingEvaluator::Instance().on_check) on_check();
  return 0;
}
