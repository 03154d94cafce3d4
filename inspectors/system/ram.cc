#include "inspectors/system/ram.h"

#include "frame/prop.h"
#include "frame/registration.h"
#include "inspectors/system/gestalt.h"

RAMInspector ram_of() { return {}; }

integer size_of_ram(Of, RAMInspector const&) { return phys_ram_of(); }

namespace {

Type<RAMInspector, kNoFingerprinting> ram_type;
Prop ram("ram", "rams", ram_of, DependsOnlyOnParameters);
Prop ram_size("size", "sizes", size_of_ram, nullptr);

}  // namespace
