#include "tests/host/vocabulary_expressions.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/host/child_process.h"

namespace gatotu::tests {
namespace {

struct Property {
  std::string singular, plural, parameter, object, result;
};

// By the property; of others any will do.
std::map<std::string, std::string> const kSamples = {
    {"bundle", "\"com.apple.none\""},
    {"file", "\"/etc/passwd\""},
    {"filesystem object", "\"/etc/passwd\""},
    {"folder", "\"/etc\""},
    {"gestalt", "\"sysv\""},
    {"integer below", "3"},
    {"node", "\"IODeviceTree:/\""},
    {"volume", "\"/\""},
    {"variable", "\"HOME\""},
    {"environment variable", "\"HOME\""},
};
// What is computed of a value, whatever machine it came from.
std::set<std::string> const kPlain = {"boolean", "hertz",         "integer",   "match",  "string",
                                      "time",    "time interval", "time zone", "version"};

class Vocabulary {
 public:
  Vocabulary() {
    for (std::string const& line : Lines(Gatotu({"vocabulary", "--format", "json"}).output)) {
      auto const entry = nlohmann::json::parse(line);
      Property const property = {entry["singular"], entry["plural"], entry["parameter"],
                                 entry["object"], entry["result"]};
      if (entry["kind"] == "type") bases_[property.singular] = property.object;
      bool const is_property = entry["kind"] == "property" || entry["kind"] == "iterated";
      if (is_property) properties_[property.object].push_back(property);
    }
  }

  std::vector<std::string> Expressions() {
    for (Property const& property : properties_[""]) Ask(property, "", 2);
    return std::move(expressions_);
  }

 private:
  bool IsOnDisk(std::string type) {
    while (!type.empty() && type != "filesystem object") type = bases_[type];
    return !type.empty();
  }

  void Ask(Property const& property, std::string const& of, int depth) {
    std::string parameter;
    if (!property.parameter.empty()) {
      auto const sample = kSamples.find(property.singular);
      parameter = property.parameter == "integer" ? " 0" : " \"a\"";
      if (sample != kSamples.end()) parameter = " " + sample->second;
    }
    // Walks through whole trees are for those who ask for them.
    bool const is_walk =
        property.singular == "descendant" || property.singular.starts_with("find ");
    if (is_walk) return;
    for (std::string const& name : {property.singular, property.plural}) {
      if (name.empty()) continue;
      std::string const expression = name + parameter + (of.empty() ? "" : " of (" + of + ")");
      expressions_.push_back(expression);
      if (depth == 0 || kPlain.contains(property.result)) continue;
      int const next = IsOnDisk(property.result) || property.result == "domain" ? 0 : depth - 1;
      for (std::string type = property.result; !type.empty(); type = bases_[type]) {
        for (Property const& member : properties_[type]) Ask(member, expression, next);
      }
    }
  }

  std::map<std::string, std::vector<Property>> properties_;
  std::map<std::string, std::string> bases_;
  std::vector<std::string> expressions_;
};

}  // namespace

std::vector<std::string> VocabularyExpressions() { return Vocabulary().Expressions(); }

}  // namespace gatotu::tests
