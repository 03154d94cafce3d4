// Makes the values that a caller sees of the addresses that plans push: with their static types
// and, where the expression is to be shown, their texts.
#pragma once

#include <cstddef>
#include <vector>

#include "evaluator/diagnostics.h"
#include "evaluator/plan.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

class ValueShower {
 public:
  // For the values of `plan`. Reports types that have no text when `is_shown`. The value type and
  // the vocabulary outlive this.
  ValueShower(Plan const& plan, ValueType const& value_type, bool is_shown,
              VocabularyIndex& vocabulary, FrameLayout& layout, Diagnostics& diagnostics);

  std::size_t CountValues() const { return nodes_.size(); }

  // Fills the run's values for the one at `address`; the first of them is the whole. kFail when
  // the text of one could not be made.
  Flow Show(Run& run, void const* address, Value const*& shown) const;

 private:
  // The type of a value or of a member, members behind one another.
  struct Node {
    ValueType const* type = nullptr;
    CastEntry const* cast = nullptr;
    std::size_t slot = 0;
    std::size_t first_member = 0;
    std::size_t member_count = 0;
  };

  // `plan` is null where no part of the expression stands for the member alone.
  void AddNode(std::size_t index, Plan const* plan, StaticType const& type,
               ValueType const& value_type, VocabularyIndex& vocabulary, FrameLayout& layout,
               Diagnostics& diagnostics);
  Flow ShowNode(Run& run, std::size_t index, void const* address) const;
  bool MakeText(Run& run, Node const& node, Value& value, void const* address) const;
  Flow CastText(Run& run, Node const& node, Value& value, void const* address) const;

  std::vector<Node> nodes_;
  bool is_shown_;
  Span span_;
};

}  // namespace gatotu
