#include "evaluator/vocabulary_index.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace gatotu {
namespace {

// Longer chains of bases are taken for a mistake of a plug-in and cut.
constexpr int kMaxBases = 64;

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

// The first registration of a name stands.
TypeRecord const* FindTypeRecord(std::string_view name) {
  for (Record const* record = registry.types.head; record != nullptr; record = record->next) {
    auto const* const type = static_cast<TypeRecord const*>(record);
    if (type->name == name) return type;
  }
  return nullptr;
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

bool IsDerivedFrom(TypeEntry const& type, TypeEntry const& base) {
  return AlongBases(type, [&](TypeEntry const& t) { return &t == &base; });
}

bool IsParametersOnly(FingerprintFunction fingerprint) {
  if (fingerprint == nullptr) return false;
  Fingerprinter fingerprinter;
  fingerprint(fingerprinter);
  return fingerprinter.IsParametersOnly();
}

std::shared_ptr<VocabularyIndex> VocabularyIndex::Current() {
  // Never destroyed: plug-ins may be unloaded after static destructors have run.
  static auto& current = *new std::shared_ptr<VocabularyIndex>;
  static std::uint64_t revision = 0;
  if (revision != registry.revision) {
    current.reset(new VocabularyIndex);
    revision = registry.revision;
  }
  return current;
}

VocabularyIndex::VocabularyIndex()
    : world_(MentionType("")),
      string_(MentionType("string")),
      integer_(MentionType("integer")),
      boolean_(MentionType("boolean")) {}

// Iterative, since a chain of bases is as long as plug-ins make it, or closed.
TypeEntry* VocabularyIndex::MentionType(std::string_view name) {
  auto [mentioned, is_new] = NameType(name);
  for (TypeEntry* entry = mentioned; is_new;) {
    TypeRecord const* const record = FindTypeRecord(entry->name);
    if (record == nullptr) break;
    entry->is_registered = true;
    entry->size = record->size;
    entry->destroy = record->destroy;
    entry->is_copyable = record->fingerprinting == kPlainBytes;
    if (*record->base == '\0') break;
    TypeEntry& derived = *entry;
    std::tie(entry, is_new) = NameType(record->base);
    derived.base = entry;
  }
  return mentioned;
}

std::pair<TypeEntry*, bool> VocabularyIndex::NameType(std::string_view name) {
  auto const known = types_by_name_.find(name);
  if (known != types_by_name_.end()) return {known->second, false};
  TypeEntry& entry = types_.emplace_back();
  entry.name = name;
  entry.kind = KindOf(entry.name);
  types_by_name_.emplace(entry.name, &entry);
  return {&entry, true};
}

PhraseTable const& VocabularyIndex::Phrases() {
  if (!phrase_table_) phrase_table_.emplace(registry.properties);
  return *phrase_table_;
}

PropertyEntry const& VocabularyIndex::EntryOf(PropertyRecord const& record) {
  auto const [place, is_new] = entries_.try_emplace(&record);
  if (is_new) {
    place->second = {&record,
                     NormalisedName(record.singular),
                     NormalisedName(record.plural),
                     *record.parameter != '\0' ? MentionType(record.parameter) : nullptr,
                     MentionType(record.object),
                     MentionType(record.result),
                     record.tag == RecordTag::kIterated,
                     IsParametersOnly(record.fingerprint)};
  }
  return place->second;
}

std::vector<PhraseUse> const* VocabularyIndex::FindPhrase(std::string_view normalised) {
  auto known = phrases_.find(normalised);
  if (known != phrases_.end()) return &known->second;
  std::vector<PhraseUse> uses;
  Phrases().ForEach(normalised, [&](PropertyRecord const& record, bool is_plural) {
    PropertyEntry const& entry = EntryOf(record);
    bool const is_known = std::any_of(uses.begin(), uses.end(), [&](PhraseUse const& use) {
      return MeansTheSame(*use.property, entry);
    });
    if (!is_known) uses.push_back({&entry, is_plural});
  });
  if (uses.empty()) return nullptr;
  return &phrases_.emplace(normalised, std::move(uses)).first->second;
}

std::vector<PropertyEntry const*> const& VocabularyIndex::Properties() {
  if (!properties_) {
    properties_.emplace();
    ForEachRecord<PropertyRecord>(registry.properties,
                                  [&](auto const& record) { AddProperty(record); });
  }
  return *properties_;
}

void VocabularyIndex::AddProperty(PropertyRecord const& record) {
  PropertyEntry const& entry = EntryOf(record);
  auto& siblings = MentionType(record.object)->properties;
  bool const is_known = std::any_of(siblings.begin(), siblings.end(),
                                    [&](auto const* known) { return MeansTheSame(*known, entry); });
  if (is_known) return;
  siblings.push_back(&entry);
  properties_->push_back(&entry);
}

std::vector<PropertyEntry const*> const& VocabularyIndex::PropertiesOf(TypeEntry const& type) {
  Properties();
  return type.properties;
}

std::deque<CastEntry> const& VocabularyIndex::Casts() {
  if (!casts_) {
    casts_.emplace();
    ForEachRecord<CastRecord>(registry.casts, [&](auto const& record) { AddCast(record); });
  }
  return *casts_;
}

void VocabularyIndex::AddCast(CastRecord const& record) {
  CastEntry const& added = casts_->emplace_back(CastEntry{&record, NormalisedName(record.name),
                                                          MentionType(record.result),
                                                          IsParametersOnly(record.fingerprint)});
  MentionType(record.source)->casts.push_back(&added);
  longest_cast_ = std::max(longest_cast_, CountWords(added.name));
}

std::vector<CastEntry const*> const& VocabularyIndex::CastsOf(TypeEntry const& type) {
  Casts();
  return type.casts;
}

bool VocabularyIndex::IsCastName(std::string_view normalised) {
  return std::any_of(Casts().begin(), Casts().end(),
                     [&](CastEntry const& cast) { return cast.name == normalised; });
}

std::size_t VocabularyIndex::LongestCast() {
  Casts();
  return longest_cast_;
}

VocabularyIndex::OperatorsByCode const& VocabularyIndex::Operators() {
  if (operators_) return *operators_;
  operators_.emplace();
  ForEachRecord<OperatorRecord>(registry.operators, [&](OperatorRecord const& record) {
    if (record.code < kOperatorAdd || record.code > kOperatorEndsWith) return;
    (*operators_)[record.code].push_back({&record, MentionType(record.left),
                                          MentionType(record.right), MentionType(record.result),
                                          IsParametersOnly(record.fingerprint)});
  });
  return *operators_;
}

TypeEntry const* VocabularyIndex::FindType(std::string_view name) {
  return FindTypeRecord(name) != nullptr ? MentionType(name) : nullptr;
}

CastEntry const* VocabularyIndex::FindCast(TypeEntry const& type, std::string_view name) {
  return AlongBases(type, [&](TypeEntry const& t) -> CastEntry const* {
    for (CastEntry const* cast : CastsOf(t)) {
      if (cast->name == name) return cast;
    }
    return nullptr;
  });
}

OperatorEntry const* VocabularyIndex::FindOperator(int code, TypeEntry const& left,
                                                   TypeEntry const& right) {
  std::vector<OperatorEntry> const& entries = Operators()[code];
  return AlongBases(left, [&](TypeEntry const& l) {
    return AlongBases(right, [&](TypeEntry const& r) -> OperatorEntry const* {
      for (OperatorEntry const& entry : entries) {
        if (entry.left == &l && entry.right == &r) return &entry;
      }
      return nullptr;
    });
  });
}

}  // namespace gatotu
