#include <CoreServices/Multiprocessing.h>

#include "machine/machine.h"

ItemCount MPProcessors() {
  machine::Fact<std::uint32_t> const count = machine::CurrentMachine().Processors().OnlineCount();
  return count ? *count : 0;
}
