#include "inspectors/system/computer.h"

#include <BSD/BSD.h>
#include <CoreServices/CoreServices.h>

#include <cstring>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "portable/core_foundation/auto_cf.h"

Computer computer() { return {}; }

inspector_string name_of_computer(Of, Computer const&) {
  AutoCFString name;
  name.Seize(CSCopyMachineName());
  if (name.Get() == nullptr) throw NoSuchObject();
  return AsInspectorString(name.Get());
}

// The value is followed by a NUL that is not part of it.
inspector_string hostname() {
  char buffer[1024] = {};
  if (BSD::gethostname(buffer, sizeof(buffer) - 1) == -1) throw NoSuchObject();
  std::size_t const length = std::strlen(buffer);
  auto* const text = static_cast<unsigned char*>(Allocate_Inspector_Memory(length + 1));
  std::memcpy(text, buffer, length + 1);
  return {text, length};
}

namespace {

Type<Computer, kNoFingerprinting> computer_type;
Prop computer_of_world("computer", "computers", computer, DependsOnlyOnParameters);
Prop computer_name("name", "names", name_of_computer, nullptr);
Prop world_hostname("hostname", "hostnames", hostname, nullptr);
Prop world_dns_name("dns name", "dns names", hostname, nullptr);

}  // namespace
