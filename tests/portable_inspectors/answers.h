// What the evaluator answers, as one text to compare.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
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

// The values, a line each but for the last; behind them "no such object" or "failed: MESSAGE" where
// that is the end. "refused CODE" where the text does not compile. No limit lets it take any time.
inline std::string Answer(std::string_view expression, std::chrono::seconds limit = {}) {
  gatotu::Compilation const compilation = gatotu::Compile(expression);
  if (!compilation.expression) return "refused " + compilation.diagnostics.at(0).code;
  gatotu::EvaluateOptions options;
  options.time_limit = limit;
  std::string text;
  auto const take = [&](gatotu::Value const& value) {
    text += Shown(value) + '\n';
    return true;
  };
  auto const evaluation = gatotu::Evaluate(*compilation.expression, take, options);
  if (evaluation.IsAnswered()) return text.substr(0, text.rfind('\n'));
  bool const is_none = evaluation.outcome == gatotu::Outcome::kNoSuchObject;
  return text + (is_none ? "no such object" : "failed: " + evaluation.diagnostic.message);
}
