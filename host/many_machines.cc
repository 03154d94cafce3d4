#include "host/many_machines.h"

#include <unistd.h>

#include <string>
#include <vector>

#include "host/expression_file.h"
#include "host/machine_list.h"
#include "host/property_list_answers.h"
#include "host/survey.h"

namespace gatotu::host {
namespace {

// All machines are asked all expressions, so that these are held; they are not to fill the memory.
constexpr std::size_t kMostExpressionBytes = std::size_t{64} << 20;

ExitStatus Refuse(std::string const& message) {
  Complain(message);
  return ExitStatus::kRefused;
}

// Those of the file become those of the line.
ExitStatus GatherExpressions(CommandLine& line) {
  if (line.file.empty() && !line.expressions.empty()) return ExitStatus::kAnswered;
  if (line.file.empty() && ::isatty(STDIN_FILENO) == 1) {
    return Refuse("several machines: give the expressions, a prompt asks one machine");
  }
  if (line.file.empty()) line.file = "-";
  if (line.file == "-" && line.several.file == "-") {
    return Refuse("standard input: either machines or expressions are read from it");
  }
  std::size_t bytes = 0;
  ExitStatus const read = AskFile(line.file, [&](std::string_view expression) {
    bytes += expression.size() + sizeof(std::string);
    line.expressions.emplace_back(expression);
    return bytes <= kMostExpressionBytes;
  });
  if (bytes > kMostExpressionBytes) return Refuse(line.file + ": too many expressions to keep");
  line.file.clear();
  return read;
}

// The answer is whether some were refused; they are taken away.
ExitStatus SayMistakes(CommandLine& line) {
  Output answers(STDOUT_FILENO);
  Output errors(STDERR_FILENO);
  auto const writer = MakeAnswerWriter(line.format, answers, errors, {});
  std::size_t const refused = std::erase_if(line.expressions, [&](std::string const& text) {
    Report report;
    report.text = text;
    Compilation compilation = CompileToShow(text, writer->ShowsPropertyLists());
    if (compilation.expression != nullptr) return false;
    report.diagnostics = std::move(compilation.diagnostics);
    writer->End(report);
    return true;
  });
  return refused > 0 ? ExitStatus::kRefused : ExitStatus::kAnswered;
}

}  // namespace

ExitStatus AskManyMachines(CommandLine const& line) {
  MachineList machines(line.several.names);
  if (line.several.file) {
    if (auto const failure = machines.ReadFrom(*line.several.file)) return Refuse(*failure);
  }
  CommandLine asked = line;
  ExitStatus status = GatherExpressions(asked);
  if (status != ExitStatus::kAnswered) return status;
  bool const names_expression = asked.expressions.size() > 1;
  status = SayMistakes(asked);
  if (asked.expressions.empty()) return status;
  return Worse(status, Survey(asked, names_expression, std::move(machines)).Hold());
}

}  // namespace gatotu::host
