// The order of version texts as they occur in the field: "10.2.1", "1.10", "1.0b3", "2.0-rc.1",
// "4.18.0-553.el8", "1:2.3-1", "1.2~beta1", "1.1.1w".
//
// A text is an epoch ("1:"), if any, and groups set off by "-", each a row of numbers and words.
// Epochs are compared first, then groups, each component by component. Where a text has no further
// component it has 0, so "1.0" equals "1" and every version built from numbers has a text that
// equals it. Words of unfinished work ("~", "dev", "alpha", "beta", "rc", also "d", "a", "b" within
// numbers) come before 0 and begin no group, other words after 0 and before any number. That makes
// it a total order of equivalence classes: texts of one class are equal. Letter case is ignored,
// except that "20A361" is no alpha: the one-letter stages are lower case.
#pragma once

#include <compare>
#include <cstdint>
#include <string_view>

#include "evaluator/plugin/export.h"

// How far a version is from its release, in the order of development.
enum class VersionStage { kBeforeAll, kDevelopment, kAlpha, kBeta, kReleaseCandidate, kRelease };

// Numbers that do not fit hold the largest one.
struct VersionParts {
  std::int64_t numbers[3] = {};  // major, minor, bug fix
  VersionStage stage = VersionStage::kRelease;
  std::int64_t non_release_revision = 0;  // the number behind the stage
};

// Whether `text` begins with a number (behind an epoch or a "v") and consists of letters, digits
// and ".-_+~" only. The functions below need such a text.
GATOTU_API bool IsVersionText(std::string_view text);

GATOTU_API std::weak_ordering CompareVersionTexts(std::string_view left, std::string_view right);

GATOTU_API VersionParts PartsOfVersionText(std::string_view text);
