#include "host/vocabulary_questions.h"

#include <map>

namespace gatotu::host {
namespace {

constexpr char kFolder[] = "folder", kFile[] = "file", kDomain[] = "domain";

// The properties without parameters by the type that has them, and each type's base.
class Types {
 public:
  explicit Types(std::vector<VocabularyEntry> const& vocabulary) {
    for (VocabularyEntry const& entry : vocabulary) {
      if (entry.kind == VocabularyKind::kType) bases_[entry.singular] = entry.object;
      bool const is_property =
          entry.kind == VocabularyKind::kProperty || entry.kind == VocabularyKind::kIterated;
      if (is_property && entry.parameter.empty() && !entry.plural.empty()) {
        properties_[entry.object].push_back(&entry);
      }
    }
  }

  std::vector<VocabularyEntry const*> const& Of(std::string const& type) {
    return properties_[type];
  }
  std::vector<VocabularyEntry const*> const& OfWorld() { return Of({}); }
  // A derived type comes before its base, the world is nobody's.
  std::vector<std::string> WithBases(std::string type) const {
    std::vector<std::string> types;
    for (; !type.empty() && types.size() < bases_.size(); type = BaseOf(type))
      types.push_back(type);
    return types;
  }

 private:
  std::string BaseOf(std::string const& type) const {
    auto const found = bases_.find(type);
    return found == bases_.end() ? std::string() : found->second;
  }

  std::map<std::string, std::vector<VocabularyEntry const*>> properties_;
  std::map<std::string, std::string> bases_;
};

}  // namespace

std::vector<std::string> QuestionsOf(std::vector<VocabularyEntry> const& vocabulary) {
  std::vector<std::string> questions;
  // Whatever tells of a folder tells of the one above it.
  auto const ask_folder = [&](std::string const& name) {
    questions.push_back("pathname of parent folder of " + name);
  };
  Types types(vocabulary);
  for (VocabularyEntry const* const root : types.OfWorld()) {
    if (root->result == kFolder) {
      ask_folder(root->singular);
      continue;
    }
    questions.push_back("number of " + root->plural);
    for (std::string const& type : types.WithBases(root->result)) {
      if (type == kFolder || type == kFile) continue;
      for (VocabularyEntry const* const property : types.Of(type)) {
        std::string const names = property->plural + " of " + root->plural;
        if (type == kDomain && property->result == kFolder) {
          ask_folder(property->singular + " of " + root->singular);
        } else if (property->result == kFolder) {
          questions.push_back("number of pathnames of parent folders of (" + names + ")");
          questions.push_back("number of volumes of (" + names + ")");
        } else {
          questions.push_back("number of (" + names + ")");
        }
      }
    }
  }
  return questions;
}

}  // namespace gatotu::host
