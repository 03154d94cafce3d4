#include "machine/capture/sources.h"
#include "machine/live/text.h"
#include "machine/system_files.h"

namespace machine::capture {

Fact<std::string> Names::HostName() const {
  constexpr char const* kKey = "HostName";
  if (facts_.Knows(kKey)) return facts_.Text(kKey);
  if (Fact<std::string> name = volume_.HostName()) return name;
  if (Fact<std::string> name = HostNameInFile(files_)) return name;
  return facts_.Missing(kKey);
}

Fact<std::string> Names::ComputerName() const {
  constexpr char const* kKey = "ComputerName";
  if (facts_.Knows(kKey)) return facts_.Text(kKey);
  if (Fact<std::string> name = volume_.ComputerName()) return name;
  return facts_.Missing(kKey);
}

Fact<std::string> Names::HostIdentifier() const {
  constexpr char const* kKey = "HostIdentifier";
  if (facts_.Knows(kKey)) return facts_.Text(kKey);
  if (Fact<std::string> identifier = MachineIdentifier(files_)) return identifier;
  return facts_.Missing(kKey);
}

}  // namespace machine::capture
