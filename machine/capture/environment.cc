#include <unordered_set>

#include "machine/capture/sources.h"
#include "machine/capture/text_record.h"

namespace machine::capture {
namespace {

constexpr char kVariables[] = "Environment", kNames[] = "EnvironmentNames";

Fact<std::vector<std::string>> NamesIn(Field const& field) {
  if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
  std::vector<std::string> names;
  for (Field const& item : field.Items()) {
    Fact<std::string> name = item.Text();
    if (!name) return name.absence();
    names.push_back(*std::move(name));
  }
  return names;
}

}  // namespace

Fact<std::string> Environment::Variable(std::string const& name) const {
  std::string const key = KeyOfBytes(name);
  bool const is_whole = facts_[kVariables].exists() && !facts_.IsPartial(kVariables);
  if (facts_.Knows(kVariables, key) || !is_whole) return facts_.Text(kVariables, key);
  std::string const source = "environment " + name;
  Announce(source, Outcome::kAbsent);
  return Absence{Outcome::kAbsent, source, {}};
}

Fact<std::vector<std::string>> Environment::VariableNames() const {
  if (facts_.Knows(kNames)) return facts_.Ask(kNames, NamesIn);
  Field const variables = facts_[kVariables];
  if (!variables.exists() || facts_.IsPartial(kVariables)) return facts_.Missing(kNames);
  auto const* entries = variables.As<RecordDictionary>();
  if (entries == nullptr) return variables.Malformed("not a dictionary");
  std::vector<std::string> names;
  std::unordered_set<std::string_view> seen;
  for (auto const& [key, value] : entries->entries()) {
    if (seen.insert(key).second) names.push_back(BytesOfKey(key));
  }
  return names;
}

}  // namespace machine::capture
