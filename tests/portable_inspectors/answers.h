// What the evaluator answers, as one text to compare.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "evaluator/evaluator.h"

inline std::string Shown(gatotu::Value const& value) {
  if (value.Type().kind != gatotu::ValueType::Kind::kTuple) return std::string(value.Text());
  std::string text;
  for (gatotu::Value const& member : value.Members()) {
    if (!text.empty()) text += ", ";
    text += Shown(member);
  }
  return text;
}

// The values, a line each but for the last; "refused CODE" where the text does not compile,
// "no such object", or "failed: MESSAGE".
inline std::string Answer(std::string_view expression) {
  gatotu::Compilation const compilation = gatotu::Compile(expression);
  if (!compilation.expression) return "refused " + compilation.diagnostics.at(0).code;
  std::string text;
  bool first = true;
  gatotu::Evaluation const evaluation =
      gatotu::Evaluate(*compilation.expression, [&](gatotu::Value const& value) {
        if (!first) text += '\n';
        first = false;
        text += Shown(value);
        return true;
      });
  if (evaluation.IsAnswered()) return text;
  if (evaluation.outcome == gatotu::Outcome::kNoSuchObject) return "no such object";
  return "failed: " + evaluation.diagnostic.message;
}
