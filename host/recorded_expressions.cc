#include "host/recorded_expressions.h"

#include <unistd.h>

#include <algorithm>

#include "host/asker.h"
#include "host/expression_file.h"
#include "host/vocabulary_questions.h"

namespace gatotu::host {
namespace {

bool IsStop(Diagnostic const& diagnostic) {
  return diagnostic.code == "time-limit" || diagnostic.code == "interrupted";
}

// Keeps no answer, and says only what keeps the capture from being made.
class MessageWriter final : public AnswerWriter {
 public:
  explicit MessageWriter(Output& errors) : errors_(errors) {}

  void Begin(Expression const&) override {}
  Preparation Prepare(Value const&, FunctionRef<bool()>) override { return Preparation::kReady; }
  void Write() override {}
  void End(Report const& report) override {
    for (Diagnostic const& diagnostic : report.diagnostics) {
      if (report.is_evaluated && !IsStop(diagnostic)) continue;
      errors_.Write(Render(diagnostic, report.text));
    }
    errors_.Flush();
  }
  // What can be asked in some format can be recorded.
  bool ShowsPropertyLists() const override { return true; }

 private:
  Output& errors_;
};

}  // namespace

ExitStatus EvaluateExpressions(CommandLine const& line, ExpressionCounts& counts) {
  Output const answers(STDOUT_FILENO);
  Output errors(STDERR_FILENO);
  MessageWriter writer(errors);
  Asker asker(line.ask, writer, answers);
  ExitStatus worst = ExitStatus::kAnswered;
  // A refused one does not keep the others from being looked at.
  auto const ask = [&](std::string_view expression) {
    ExitStatus const status = asker.Ask(expression);
    ++counts.evaluated;
    if (status == ExitStatus::kAnswered) ++counts.answered;
    if (status != ExitStatus::kNoAnswer) worst = Worse(worst, status);
    return status != ExitStatus::kInterrupted;
  };
  bool const is_finished =
      std::all_of(line.expressions.begin(), line.expressions.end(), std::cref(ask));
  if (!is_finished || line.file.empty()) return worst;
  ExitStatus const read = AskFile(line.file, ask);
  return Worse(worst, read);
}

void AskVocabulary() {
  for (std::string const& question : QuestionsOf(Vocabulary())) {
    Compilation const compilation = Compile(question);
    if (compilation.expression == nullptr) continue;
    Evaluation const asked = Evaluate(*compilation.expression, [](Value const&) { return true; });
    if (asked.outcome == Outcome::kInterrupted) return;
  }
}

}  // namespace gatotu::host
