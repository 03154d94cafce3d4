// The names of the registered properties, found without regard to case and to how many blanks
// stand between words. Made in one pass that copies no name, since of all of them an expression
// asks for a few. Points into the registrations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/registry.h"

namespace gatotu {

// Lower case, one blank between words, none around.
std::string NormalisedName(std::string_view name);

std::size_t CountWords(std::string_view normalised);

class PhraseTable {
 public:
  explicit PhraseTable(RecordList const& properties);

  std::size_t LongestPhrase() const { return longest_; }  // in words

  // Each record with that name, and whether it is its plural; in the order of registration.
  template <class Visitor>
  void ForEach(std::string_view normalised, Visitor&& visit) const {
    std::uint32_t const hash = HashOf(normalised);
    for (std::uint32_t at = chains_[hash % chains_.size()]; at != kEnd; at = names_[at].next) {
      Name const& name = names_[at];
      if (name.hash == hash && IsNamed(name, normalised)) visit(*name.record, name.is_plural);
    }
  }

 private:
  static constexpr std::uint32_t kEnd = ~std::uint32_t{0};

  struct Name {
    PropertyRecord const* record;
    std::uint32_t hash;  // of the normalised name
    std::uint32_t next;
    bool is_plural;
  };

  static std::uint32_t HashOf(std::string_view name);
  static bool IsNamed(Name const& name, std::string_view normalised);
  void Add(PropertyRecord const& record, char const* name, bool is_plural);

  std::vector<Name> names_;
  std::vector<std::uint32_t> chains_;
  std::size_t longest_ = 0;
};

}  // namespace gatotu
