#include "host/machine_choice.h"

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "machine/capture/capture.h"

namespace gatotu::host {

machine::Fact<std::shared_ptr<machine::Machine const>> OpenMachine(std::string const& name,
                                                                   std::string const& user) {
  if (name == "live") return machine::MakeLiveMachine();
  return machine::OpenCapture(name, {.user = user}, &ReadRecordedFacts);
}

}  // namespace gatotu::host
