#include "frame/registration_block.h"

PropertyRegistrationBlock::PropertyRegistrationBlock(
    void* handle, char const* singular, char const* plural, char const* parameter_type,
    char const* direct_object_type, char const* result_type, unsigned long state_size,
    InspectorConstruct construct, InspectorDestroy destroy, InspectorGet first, InspectorGet next,
    void const* context, FingerprintFunction fingerprint) {
  Register_Iterated_Property(handle, kPropertyBlockSize, singular, plural, parameter_type,
                             direct_object_type, result_type, state_size, construct, destroy, first,
                             next, context, fingerprint);
}

PropertyRegistrationBlock::~PropertyRegistrationBlock() { Unregister_Property(this); }

void PropertyRegistrationBlock::Register(char const* singular, char const* plural,
                                         char const* parameter_type, char const* direct_object_type,
                                         char const* result_type, InspectorGet get,
                                         FingerprintFunction fingerprint) {
  Register_Property(this, kPropertyBlockSize, singular, plural, parameter_type, direct_object_type,
                    result_type, get, this, fingerprint);
}

void PropertyRegistrationBlock::RegisterIterated(
    char const* singular, char const* plural, char const* parameter_type,
    char const* direct_object_type, char const* result_type, unsigned long state_size,
    InspectorConstruct construct, InspectorDestroy destroy, InspectorGet first, InspectorGet next,
    FingerprintFunction fingerprint) {
  Register_Iterated_Property(this, kPropertyBlockSize, singular, plural, parameter_type,
                             direct_object_type, result_type, state_size, construct, destroy, first,
                             next, this, fingerprint);
}
