// Compiles and evaluates arbitrary bytes against the tests' vocabulary. A crash, a hang, a value
// misused or left over, and text that is neither an expression nor diagnosed, end the run.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "tests/evaluator/test_vocabulary.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  using namespace std::chrono_literals;
  std::string_view const text(reinterpret_cast<char const*>(bytes), size);
  auto const compilation = gatotu::Compile(text, gatotu::Purpose::kUse);
  if ((compilation.expression == nullptr) == compilation.diagnostics.empty()) std::abort();
  for (auto const& diagnostic : compilation.diagnostics) gatotu::Render(diagnostic, text);
  if (compilation.expression == nullptr) return 0;

  compilation.expression->Explain();
  std::size_t left = 10000;
  gatotu::Evaluate(*compilation.expression, [&](gatotu::Value const&) { return --left > 0; },
                   {.time_limit = 50ms});
  if (ledger.living != 0 || ledger.misused != 0) std::abort();
  ledger.said.clear();
  return 0;
}
