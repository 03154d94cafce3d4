#include <BSD/environment.h>

#include "machine/machine.h"

namespace BSD {

std::optional<std::string> GetEnvironmentVariable(std::string const& name) {
  machine::Fact<std::string> value = machine::CurrentMachine().Environment().Variable(name);
  if (!value) return {};
  return std::move(value.value());
}

std::vector<std::string> ListEnvironmentVariables() {
  machine::Fact<std::vector<std::string>> names =
      machine::CurrentMachine().Environment().VariableNames();
  if (!names) return {};
  return std::move(names.value());
}

}  // namespace BSD
