// Rules that every registration of this library keeps.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "evaluator/evaluator.h"

namespace {

std::vector<gatotu::VocabularyEntry> Own() {
  std::vector<gatotu::VocabularyEntry> entries = gatotu::Vocabulary();
  std::erase_if(entries, [](gatotu::VocabularyEntry const& entry) {
    return entry.library.find("PortableInspectors") == std::string::npos;
  });
  return entries;
}

TEST(Vocabulary, NamesCanBeWritten) {
  std::regex const taken(
      "\\b(of|whose|it|as|and|or|not|if|then|else|is|exists|mod|true|false)\\b"
      "|^(number|sum|minimum|maximum|concatenation|first|last|item|unique values)$");
  std::size_t count = 0;
  for (gatotu::VocabularyEntry const& entry : Own()) {
    if (entry.kind != gatotu::VocabularyKind::kProperty &&
        entry.kind != gatotu::VocabularyKind::kIterated) {
      continue;
    }
    ++count;
    for (std::string const& name : {entry.singular, entry.plural}) {
      EXPECT_FALSE(name.empty()) << entry.singular;
      EXPECT_FALSE(std::regex_search(name, taken)) << name;
    }
    EXPECT_NE(entry.singular, entry.plural);
  }
  EXPECT_GT(count, 80u);
}

// A plain and an iterated property may share a name; two of a kind may not.
TEST(Vocabulary, RegistersNothingTwice) {
  std::set<std::tuple<gatotu::VocabularyKind, std::string, std::string, std::string>> seen;
  for (gatotu::VocabularyEntry const& entry : Own()) {
    auto const [found, is_new] =
        seen.emplace(entry.kind, entry.singular, entry.parameter, entry.object);
    EXPECT_TRUE(is_new) << entry.singular << ' ' << entry.object;
  }
}

// What only the machine knows is asked anew each time.
TEST(Vocabulary, NeverKeepsWhatTheMachineTells) {
  std::set<std::string> const asked_anew = {"now",  "time zone", "environment variable",
                                            "year", "hour",      "offset"};
  for (gatotu::VocabularyEntry const& entry : Own()) {
    bool const is_unit = entry.object.empty() && entry.singular == "hour";
    if (!asked_anew.contains(entry.singular) || is_unit) continue;
    EXPECT_FALSE(entry.depends_only_on_parameters) << entry.singular;
  }
}

}  // namespace
