// Asking questions from C++: compile an expression once, evaluate it any number of times.
//
//   gatotu::Compilation compilation = gatotu::Compile("names of processes");
//   if (compilation.expression) {
//     gatotu::Evaluate(*compilation.expression, [](gatotu::Value const& value) {
//       std::cout << value.Text() << '\n';
//       return true;
//     });
//   }
//
// Every function may be called from any thread; evaluations of one process run one at a time,
// since the caches of inspectors are unguarded by their interface. An evaluation may be asked for
// from within a value callback; a plug-in may not be unloaded there.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/diagnostic.h"
#include "evaluator/evidence.h"
#include "evaluator/function_ref.h"
#include "evaluator/plugin/context.h"
#include "evaluator/plugin/export.h"

namespace gatotu {

// The static type of a value: one of the registered types, or a tuple of types.
class ValueType {
 public:
  enum class Kind { kString, kInteger, kBoolean, kHertz, kObject, kTuple };

  Kind kind = Kind::kObject;
  std::string name;                // as registered; for a tuple "(string, integer)"
  std::vector<ValueType> members;  // of a tuple
};

// One value of an answer. It and all it points to is valid during the callback only.
class Value {
 public:
  ValueType const& Type() const { return *type_; }

  // The value where its inspector constructed it; null for a tuple.
  void const* Address() const { return address_; }

  // The value as text: by its cast to "string". Only of an expression compiled to be shown;
  // empty for a tuple, whose members have texts of their own.
  std::string_view Text() const { return text_; }

  std::span<Value const> Members() const { return {members_, member_count_}; }

  // Of the kinds that the name says only.
  std::int64_t Integer() const { return *static_cast<std::int64_t const*>(address_); }
  bool Boolean() const { return *static_cast<bool const*>(address_); }

 private:
  friend class ValueShower;
  ValueType const* type_ = nullptr;
  void const* address_ = nullptr;
  std::string_view text_;
  Value const* members_ = nullptr;
  std::size_t member_count_ = 0;
};

// A compiled expression, immutable. It refuses to run after any unregistration.
class GATOTU_API Expression {
 public:
  ~Expression();
  Expression(Expression const&) = delete;
  Expression& operator=(Expression const&) = delete;

  std::string const& Text() const;
  ValueType const& Type() const;
  // Whether any number of values may come (a plural), or exactly one.
  bool IsMany() const;

  // The typed tree, a node a line, indented by depth.
  std::string Explain() const;

  struct Program;

 private:
  friend struct ExpressionAccess;
  explicit Expression(std::unique_ptr<Program> program);
  std::unique_ptr<Program> program_;
};

enum class Purpose {
  kShow,  // every value has a text; a type without one is diagnosed
  kUse,   // the caller takes the values themselves
};

// Either an expression or what is wrong with the text, never both.
struct Compilation {
  std::unique_ptr<Expression const> expression;
  std::vector<Diagnostic> diagnostics;
};

GATOTU_API Compilation Compile(std::string_view text, Purpose purpose = Purpose::kShow);

// Only what is wrong with the text; empty when it can be evaluated.
GATOTU_API std::vector<Diagnostic> Check(std::string_view text, Purpose purpose = Purpose::kShow);

enum class Outcome {
  kAnswered,
  kNoSuchObject,
  kFailed,       // an inspector failed, not unique, overflow, ...
  kStale,        // compiled before an unregistration
  kInterrupted,  // `Interrupt` was called
  kTimeLimit,
};

struct Evaluation {
  Outcome outcome = Outcome::kAnswered;
  // What went wrong and where, when not answered.
  Diagnostic diagnostic;
  // The announcements made while the inspector that failed was at work.
  std::size_t evidence_begin = 0;
  std::size_t evidence_end = 0;

  bool IsAnswered() const { return outcome == Outcome::kAnswered; }
};

struct EvaluateOptions {
  // Zero: no limit. Looked at between inspectors, and where an inspector asks.
  std::chrono::nanoseconds time_limit{0};
  // Keep what inspectors cached since the last evaluation: for a batch at one moment.
  bool keep_caches = false;
  EvidenceRecorder* evidence = nullptr;
};

// Receives the values in order; false ends the evaluation. What an expression of exactly one
// value hands over is to be held back until `Evaluate` returns and dropped unless it answered:
// that there is a second one shows only later.
using ValueCallback = FunctionRef<bool(Value const&)>;

GATOTU_API Evaluation Evaluate(Expression const& expression, ValueCallback callback,
                               EvaluateOptions const& options = {});

// Ends the running evaluation, from any thread or a signal handler. Without one running, nothing.
GATOTU_API void Interrupt() noexcept;

// The context that inspectors get; not owned, null for none. Drops kept results.
GATOTU_API void SetInspectorContext(InspectorContext* context);

// Forgets the results kept of inspectors that depend on their arguments alone. For the host to
// call when another machine is put in use.
GATOTU_API void DropKeptResults();

enum class VocabularyKind { kType, kProperty, kIterated, kCast, kOperator, kCache };

// One registration. Types are named as registered, operators by their sign.
struct VocabularyEntry {
  VocabularyKind kind = VocabularyKind::kType;
  std::string singular;   // for a cast its name, for an operator its sign
  std::string plural;     // empty for none
  std::string parameter;  // for an operator its right type
  std::string object;     // empty for the world; for a type its base; for an operator its left type
  std::string result;
  bool depends_only_on_parameters = false;
  std::string library;  // file name of the shared library that registered it
};

// Every registration, identical ones once: types, properties, casts, operators, caches, each
// sorted by object and name.
GATOTU_API std::vector<VocabularyEntry> Vocabulary();

// A plug-in held in memory. Loading it registers its inspectors, the destructor withdraws them;
// both wait for a running evaluation, in the order of locks that dlopen itself cannot keep.
class GATOTU_API PlugIn {
 public:
  // Null when it cannot be loaded; `error` then says why.
  static std::unique_ptr<PlugIn> Load(std::string const& path, std::string& error);
  ~PlugIn();
  PlugIn(PlugIn const&) = delete;
  PlugIn& operator=(PlugIn const&) = delete;

 private:
  explicit PlugIn(void* handle) : handle_(handle) {}
  void* handle_;
};

}  // namespace gatotu
