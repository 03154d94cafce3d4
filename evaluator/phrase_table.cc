#include "evaluator/phrase_table.h"

#include <algorithm>
#include <bit>

#include "evaluator/ascii_case.h"

namespace gatotu {
namespace {

// The bytes of the normalised name, one after the other.
template <class Visitor>
void ForEachNormalised(std::string_view name, Visitor&& visit) {
  bool is_first = true;
  bool is_blank_due = false;
  for (char const c : name) {
    if (c == ' ') {
      is_blank_due = !is_first;
      continue;
    }
    if (is_blank_due) visit(' ');
    visit(LowerCaseAscii(c));
    is_first = is_blank_due = false;
  }
}

struct Summary {
  std::uint32_t hash = 0;
  std::size_t words = 0;
};

Summary Summarise(std::string_view name) {
  std::uint32_t hash = 5381;
  std::size_t blanks = 0;
  bool is_empty = true;
  ForEachNormalised(name, [&](char c) {
    hash = hash * 33 + static_cast<unsigned char>(c);
    blanks += c == ' ';
    is_empty = false;
  });
  return {hash ^ hash >> 15, is_empty ? 0 : blanks + 1};
}

}  // namespace

std::string NormalisedName(std::string_view name) {
  std::string normalised;
  normalised.reserve(name.size());
  ForEachNormalised(name, [&](char c) { normalised += c; });
  return normalised;
}

std::size_t CountWords(std::string_view normalised) { return Summarise(normalised).words; }

PhraseTable::PhraseTable(RecordList const& properties) {
  names_.reserve(2 * properties.count);
  ForEachRecord<PropertyRecord>(properties, [&](PropertyRecord const& record) {
    Add(record, record.singular, false);
    Add(record, record.plural, true);
  });
  chains_.assign(std::bit_ceil(names_.size() + 1), kEnd);
  // From the last one, so that a chain begins with the first.
  for (std::size_t i = names_.size(); i-- > 0;) {
    std::uint32_t& first = chains_[names_[i].hash % chains_.size()];
    names_[i].next = first;
    first = static_cast<std::uint32_t>(i);
  }
}

void PhraseTable::Add(PropertyRecord const& record, char const* name, bool is_plural) {
  Summary const summary = Summarise(name);
  if (summary.words == 0) return;
  names_.push_back({&record, summary.hash, kEnd, is_plural});
  longest_ = std::max(longest_, summary.words);
}

std::uint32_t PhraseTable::HashOf(std::string_view name) { return Summarise(name).hash; }

bool PhraseTable::IsNamed(Name const& name, std::string_view normalised) {
  return NormalisedName(name.is_plural ? name.record->plural : name.record->singular) == normalised;
}

}  // namespace gatotu
