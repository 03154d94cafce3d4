// The environment variables of the machine in use.
#include <BSD/environment.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/text.h"

namespace {

using Text = inspector_string;

// A variable's two strings, in evaluator memory.
struct environment_variable {
  Text name;
  Text value;
};

struct environment {};

}  // namespace

template <>
struct InspectorTypeName<environment_variable> {
  static constexpr char const* kName = "environment variable";
};
template <>
struct InspectorTypeName<environment> {
  static constexpr char const* kName = "environment";
};

namespace {

environment environment_of_world() { return {}; }

environment_variable MakeVariable(std::string const& name) {
  std::optional<std::string> const value = BSD::GetEnvironmentVariable(name);
  if (!value) throw NoSuchObject();
  return {CopyText(name), CopyText(*value)};
}

environment_variable variable_named(unsigned char const* start, unsigned long length) {
  return MakeVariable(std::string(View(start, length)));
}
environment_variable variable_of_environment(unsigned char const* start, unsigned long length,
                                             environment const&) {
  return variable_named(start, length);
}

// A variable that goes meanwhile is skipped.
class VariableIterator {
 public:
  environment_variable First() {
    names_ = BSD::ListEnvironmentVariables();
    next_ = 0;
    return Next();
  }
  environment_variable Next() {
    while (next_ < names_.size()) {
      std::string const& name = names_[next_++];
      if (BSD::GetEnvironmentVariable(name)) return MakeVariable(name);
    }
    throw NoSuchObject();
  }

  environment_variable First(environment const&) { return First(); }
  environment_variable Next(environment const&) { return Next(); }

 private:
  std::vector<std::string> names_;
  std::size_t next_ = 0;
};

Text name_of_variable(environment_variable const& variable) { return variable.name; }
Text value_of_variable(environment_variable const& variable) { return variable.value; }

// "name=value".
Text VariableAsString(environment_variable const& variable) {
  return CopyText(std::string(View(variable.name)) + "=" + std::string(View(variable.value)));
}

Type<environment> environment_type;
Type<environment_variable> variable_type;
GlobalProperty<environment> the_environment("environment", "environments", environment_of_world,
                                            nullptr);
NamedGlobalProperty<environment_variable> variable("environment variable", "environment variables",
                                                   variable_named, nullptr);
IteratedGlobalProperty<VariableIterator, environment_variable> variables("environment variable",
                                                                         "environment variables",
                                                                         nullptr);
NamedProperty<environment, environment_variable> variable_of("variable", "variables",
                                                             variable_of_environment, nullptr);
IteratedProperty<VariableIterator, environment, environment_variable> variables_of("variable",
                                                                                   "variables",
                                                                                   nullptr);
Property<environment_variable, Text> name("name", "names", name_of_variable, nullptr);
Property<environment_variable, Text> value("value", "values", value_of_variable, nullptr);
Cast<environment_variable, Text> as_string("string", VariableAsString, nullptr);

}  // namespace
