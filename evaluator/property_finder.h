// Which registered property a phrase means, and what to say when it means none.
#pragma once

#include <string>
#include <string_view>

#include "evaluator/diagnostics.h"
#include "evaluator/static_type.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

struct FoundProperty {
  PropertyEntry const* property = nullptr;  // null when none fits
  bool is_plural = false;                   // under which of its names it was asked for
};

class PropertyFinder {
 public:
  PropertyFinder(VocabularyIndex& vocabulary, Diagnostics& diagnostics)
      : vocabulary_(vocabulary), diagnostics_(diagnostics) {}

  // Of the object's type or the nearest of its bases; `parameter` null for none. A plural prefers
  // an iterated property, a singular a plain one.
  FoundProperty Find(std::string_view phrase, TypeEntry const* parameter,
                     TypeEntry const& object) const;

  // Reports that nothing was found. What was probably meant, so that checking can go on with it.
  FoundProperty Report(std::string_view phrase, Span span, TypeEntry const* parameter,
                       TypeEntry const& object);
  // The same where the object's type is not known, because it is wrong itself.
  void ReportUnknown(std::string_view phrase, Span span);

  // Notes that list what can be asked of a type.
  std::string DescribeProperties(TypeEntry const& type) const;
  std::string DescribeCasts(TypeEntry const& type) const;

 private:
  bool ReportParameter(std::string_view phrase, Span span, TypeEntry const* parameter,
                       TypeEntry const& object, FoundProperty& meant);

  VocabularyIndex& vocabulary_;
  Diagnostics& diagnostics_;
};

}  // namespace gatotu
