#include "evaluator/vocabulary_index.h"

#include <algorithm>
#include <cstring>

#include "evaluator/ascii_case.h"

namespace gatotu {
namespace {

// Longer chains of bases are taken for a mistake of a plug-in and cut.
constexpr int kMaxBases = 64;

std::size_t CountWords(std::string_view normalised) {
  return normalised.empty() ? 0 : 1 + std::count(normalised.begin(), normalised.end(), ' ');
}

ValueType::Kind KindOf(std::string_view name) {
  if (name == "string") return ValueType::Kind::kString;
  if (name == "integer") return ValueType::Kind::kInteger;
  if (name == "boolean") return ValueType::Kind::kBoolean;
  if (name == "hertz") return ValueType::Kind::kHertz;
  return ValueType::Kind::kObject;
}

bool MeansTheSame(PropertyEntry const& a, PropertyEntry const& b) {
  return a.singular == b.singular && a.plural == b.plural && a.parameter == b.parameter &&
         a.object == b.object && a.result == b.result && a.is_iterated == b.is_iterated;
}

// The types of a base chain, nearest first, however the chain is made.
template <class Visitor>
auto AlongBases(TypeEntry const& type, Visitor&& visit) -> decltype(visit(type)) {
  TypeEntry const* current = &type;
  for (int i = 0; current != nullptr && i < kMaxBases; ++i, current = current->base) {
    if (auto found = visit(*current)) return found;
  }
  return {};
}

}  // namespace

std::string NormalisedName(std::string_view name) {
  std::string normalised;
  normalised.reserve(name.size());
  for (char c : name) {
    if (c != ' ') {
      normalised += LowerCaseAscii(c);
    } else if (!normalised.empty() && normalised.back() != ' ') {
      normalised += ' ';
    }
  }
  if (!normalised.empty() && normalised.back() == ' ') normalised.pop_back();
  return normalised;
}

bool IsDerivedFrom(TypeEntry const& type, TypeEntry const& base) {
  return AlongBases(type, [&](TypeEntry const& t) { return &t == &base; });
}

bool IsParametersOnly(FingerprintFunction fingerprint) {
  if (fingerprint == nullptr) return false;
  Fingerprinter fingerprinter;
  fingerprint(fingerprinter);
  return fingerprinter.IsParametersOnly();
}

std::shared_ptr<VocabularyIndex const> VocabularyIndex::Current() {
  // Never destroyed: plug-ins may be unloaded after static destructors have run.
  static auto& current = *new std::shared_ptr<VocabularyIndex const>;
  static std::uint64_t revision = 0;
  if (revision != registry.revision) {
    current.reset(new VocabularyIndex);
    revision = registry.revision;
  }
  return current;
}

VocabularyIndex::VocabularyIndex() {
  world_ = MentionType("");
  string_ = MentionType("string");
  integer_ = MentionType("integer");
  boolean_ = MentionType("boolean");
  AddTypes();
  AddProperties();
  AddCasts();
  AddOperators();
}

TypeEntry* VocabularyIndex::MentionType(char const* name) {
  auto found = types_by_name_.find(std::string_view(name));
  if (found != types_by_name_.end()) return found->second;
  TypeEntry& entry = types_.emplace_back();
  entry.name = name;
  entry.kind = KindOf(entry.name);
  types_by_name_.emplace(entry.name, &entry);
  return &entry;
}

void VocabularyIndex::AddTypes() {
  ForEachRecord<TypeRecord>(registry.types, [&](TypeRecord const& record) {
    TypeEntry& entry = *MentionType(record.name);
    if (entry.is_registered) return;  // the first registration of a name stands
    entry.is_registered = true;
    entry.size = record.size;
    entry.destroy = record.destroy;
    entry.is_copyable = record.fingerprinting == kPlainBytes;
    if (*record.base != '\0') entry.base = MentionType(record.base);
  });
}

void VocabularyIndex::AddProperties() {
  ForEachRecord<PropertyRecord>(registry.properties, [&](PropertyRecord const& record) {
    TypeEntry& object = *MentionType(record.object);
    PropertyEntry entry{&record,
                        NormalisedName(record.singular),
                        NormalisedName(record.plural),
                        *record.parameter != '\0' ? MentionType(record.parameter) : nullptr,
                        &object,
                        MentionType(record.result),
                        record.tag == RecordTag::kIterated,
                        IsParametersOnly(record.fingerprint)};
    bool is_known = std::any_of(object.properties.begin(), object.properties.end(),
                                [&](auto const* known) { return MeansTheSame(*known, entry); });
    if (is_known) return;
    PropertyEntry const& added = properties_.emplace_back(std::move(entry));
    object.properties.push_back(&added);
    AddPhrase(added.singular, {&added, false});
    if (added.plural != added.singular) AddPhrase(added.plural, {&added, true});
  });
}

void VocabularyIndex::AddPhrase(std::string const& name, PhraseUse use) {
  if (name.empty()) return;
  phrases_[name].push_back(use);
  longest_phrase_ = std::max(longest_phrase_, CountWords(name));
}

void VocabularyIndex::AddCasts() {
  ForEachRecord<CastRecord>(registry.casts, [&](CastRecord const& record) {
    CastEntry const& added = casts_.emplace_back(CastEntry{&record, NormalisedName(record.name),
                                                           MentionType(record.result),
                                                           IsParametersOnly(record.fingerprint)});
    MentionType(record.source)->casts.push_back(&added);
    ++cast_names_[added.name];
    longest_cast_ = std::max(longest_cast_, CountWords(added.name));
  });
}

void VocabularyIndex::AddOperators() {
  ForEachRecord<OperatorRecord>(registry.operators, [&](OperatorRecord const& record) {
    if (record.code < kOperatorAdd || record.code > kOperatorEndsWith) return;
    operators_[record.code].push_back({&record, MentionType(record.left), MentionType(record.right),
                                       MentionType(record.result),
                                       IsParametersOnly(record.fingerprint)});
  });
}

std::vector<PhraseUse> const* VocabularyIndex::FindPhrase(std::string_view normalised) const {
  auto found = phrases_.find(normalised);
  return found != phrases_.end() ? &found->second : nullptr;
}

bool VocabularyIndex::IsCastName(std::string_view normalised) const {
  return cast_names_.find(normalised) != cast_names_.end();
}

TypeEntry const* VocabularyIndex::FindType(std::string_view name) const {
  auto found = types_by_name_.find(name);
  return found != types_by_name_.end() ? found->second : nullptr;
}

CastEntry const* VocabularyIndex::FindCast(TypeEntry const& type, std::string_view name) const {
  return AlongBases(type, [&](TypeEntry const& t) -> CastEntry const* {
    for (CastEntry const* cast : t.casts) {
      if (cast->name == name) return cast;
    }
    return nullptr;
  });
}

OperatorEntry const* VocabularyIndex::FindOperator(int code, TypeEntry const& left,
                                                   TypeEntry const& right) const {
  return AlongBases(left, [&](TypeEntry const& l) {
    return AlongBases(right, [&](TypeEntry const& r) -> OperatorEntry const* {
      for (OperatorEntry const& entry : operators_[code]) {
        if (entry.left == &l && entry.right == &r) return &entry;
      }
      return nullptr;
    });
  });
}

}  // namespace gatotu
