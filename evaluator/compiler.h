// From the syntax tree to plans: every name resolved, every type and number checked. What is
// wrong is reported, and checking goes on with what was probably meant.
#pragma once

#include "evaluator/diagnostics.h"
#include "evaluator/plan.h"
#include "evaluator/syntax.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

// Null when something was reported. The types are interned in `types`, which is to outlive the
// plan, as is the vocabulary.
PlanPointer CompileSyntax(SyntaxNode const& root, VocabularyIndex& vocabulary, StaticTypes& types,
                          FrameLayout& layout, Diagnostics& diagnostics);

}  // namespace gatotu
