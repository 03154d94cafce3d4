#include "frame/dummy_inspector_type.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/prop.h"
#include "frame/registration.h"

DummyInspectorType NoPropertyOfWorld() { throw NoSuchObject(); }
inspector_string NoCast(DummyInspectorType const&) { throw NoSuchObject(); }

namespace {

Type<DummyInspectorType, kNoFingerprinting> dummy_type;
Prop registry("registry", "registries", NoPropertyOfWorld, DependsOnlyOnParameters);
Cast<DummyInspectorType, inspector_string> dummy_as_string("string", NoCast,
                                                           DependsOnlyOnParameters);

}  // namespace
