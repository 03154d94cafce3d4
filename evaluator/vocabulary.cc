#include <dlfcn.h>

#include <algorithm>
#include <string>
#include <tuple>

#include "evaluator/evaluator.h"
#include "evaluator/operator_signs.h"
#include "evaluator/registry.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {
namespace {

// The file name of the library in whose data the registration object stands.
std::string LibraryOf(Record const& record) {
  Dl_info info{};
  if (dladdr(&record, &info) == 0 || info.dli_fname == nullptr) return {};
  std::string path = info.dli_fname;
  return path.substr(path.rfind('/') + 1);
}

VocabularyEntry MakeEntry(TypeRecord const& record) {
  return {VocabularyKind::kType, record.name, {},    {},
          record.base,           record.name, false, LibraryOf(record)};
}

VocabularyEntry MakeEntry(PropertyRecord const& record) {
  bool is_iterated = record.tag == RecordTag::kIterated;
  return {is_iterated ? VocabularyKind::kIterated : VocabularyKind::kProperty,
          record.singular,
          record.plural,
          record.parameter,
          record.object,
          record.result,
          IsParametersOnly(record.fingerprint),
          LibraryOf(record)};
}

VocabularyEntry MakeEntry(CastRecord const& record) {
  return {VocabularyKind::kCast,
          record.name,
          {},
          {},
          record.source,
          record.result,
          IsParametersOnly(record.fingerprint),
          LibraryOf(record)};
}

VocabularyEntry MakeEntry(OperatorRecord const& record) {
  return {VocabularyKind::kOperator,
          std::string(SignOf(record.code)),
          {},
          record.right,
          record.left,
          record.result,
          IsParametersOnly(record.fingerprint),
          LibraryOf(record)};
}

VocabularyEntry MakeEntry(CacheRecord const& record) {
  VocabularyEntry entry;
  entry.kind = VocabularyKind::kCache;
  entry.library = LibraryOf(record);
  return entry;
}

auto Identity(VocabularyEntry const& entry) {
  return std::tie(entry.kind, entry.object, entry.singular, entry.parameter, entry.plural,
                  entry.result, entry.library);
}

// Caches have nothing to tell them apart, so each counts.
bool IsRepetition(VocabularyEntry const& a, VocabularyEntry const& b) {
  return a.kind != VocabularyKind::kCache && Identity(a) == Identity(b);
}

template <class Kind>
void AddAll(std::vector<VocabularyEntry>& entries, RecordList const& list) {
  ForEachRecord<Kind>(list, [&](Kind const& record) { entries.push_back(MakeEntry(record)); });
}

}  // namespace

std::vector<VocabularyEntry> Vocabulary() {
  std::lock_guard lock(registry.mutex);
  std::vector<VocabularyEntry> entries;
  AddAll<TypeRecord>(entries, registry.types);
  AddAll<PropertyRecord>(entries, registry.properties);
  AddAll<CastRecord>(entries, registry.casts);
  AddAll<OperatorRecord>(entries, registry.operators);
  AddAll<CacheRecord>(entries, registry.caches);
  std::sort(entries.begin(), entries.end(), [](VocabularyEntry const& a, VocabularyEntry const& b) {
    return Identity(a) < Identity(b);
  });
  entries.erase(std::unique(entries.begin(), entries.end(), IsRepetition), entries.end());
  return entries;
}

}  // namespace gatotu
