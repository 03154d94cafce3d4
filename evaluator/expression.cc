#include <utility>

#include "evaluator/compiler.h"
#include "evaluator/evaluator.h"
#include "evaluator/parser.h"
#include "evaluator/program.h"
#include "evaluator/registry.h"

namespace gatotu {
namespace {

void ExplainPlan(std::string& out, Plan const& plan, std::size_t depth) {
  out.append(2 * depth, ' ');
  out += plan.Label() + ": " + plan.type->Name() + (plan.is_many ? ", many" : ", one") + '\n';
  plan.VisitChildren([&](Plan const& child) { ExplainPlan(out, child, depth + 1); });
}

bool CompileInto(Expression::Program& program, Purpose purpose, Diagnostics& diagnostics) {
  SyntaxTree tree = ParseExpression(program.text, *program.vocabulary, diagnostics);
  if (tree.root == nullptr) return false;
  program.plan =
      CompileSyntax(*tree.root, *program.vocabulary, program.types, program.layout, diagnostics);
  if (program.plan == nullptr) return false;
  program.type = MakeValueType(*program.plan->type);
  program.shower.emplace(*program.plan, program.type, purpose == Purpose::kShow,
                         *program.vocabulary, program.layout, diagnostics);
  return diagnostics.IsEmpty();
}

}  // namespace

Expression::Expression(std::unique_ptr<Program> program) : program_(std::move(program)) {}
Expression::~Expression() = default;

std::string const& Expression::Text() const { return program_->text; }
ValueType const& Expression::Type() const { return program_->type; }
bool Expression::IsMany() const { return program_->plan->is_many; }

std::string Expression::Explain() const {
  std::string out;
  ExplainPlan(out, *program_->plan, 0);
  return out;
}

Compilation Compile(std::string_view text, Purpose purpose) {
  std::lock_guard lock(registry.mutex);
  auto program = std::make_unique<Expression::Program>();
  program->text = text;
  program->vocabulary = VocabularyIndex::Current();
  program->generation = registry.generation;
  Diagnostics diagnostics(program->text);
  bool is_compiled = CompileInto(*program, purpose, diagnostics);
  Compilation compilation;
  compilation.diagnostics = diagnostics.Take();
  if (is_compiled) compilation.expression = ExpressionAccess::Make(std::move(program));
  return compilation;
}

std::vector<Diagnostic> Check(std::string_view text, Purpose purpose) {
  return Compile(text, purpose).diagnostics;
}

}  // namespace gatotu
