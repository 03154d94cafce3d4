// Answers on their way out, in one of the formats. Values are written while they come; of an
// expression of exactly one value they are held back until it is known that it was answered.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/evaluator.h"
#include "host/answer_label.h"
#include "host/evidence_log.h"
#include "host/output.h"

namespace gatotu::host {

enum class Format { kText, kJson, kCsv, kTsv };

// What there is to say about an expression besides its values.
struct Report {
  std::string_view text;
  Expression const* expression = nullptr;  // null when refused
  bool is_evaluated = false;
  std::vector<Diagnostic> diagnostics;
  std::vector<std::string> reasons;  // why there is no such object
  std::string explanation;           // empty when not asked for
  bool has_evidence = false;
  std::vector<Consultation> evidence;
  bool has_timing = false;
  std::int64_t compile_microseconds = 0;
  std::int64_t evaluate_microseconds = 0;
};

enum class Preparation {
  kReady,
  kTooLong,  // the answer would become longer than may be
  kStopped,
};

class AnswerWriter {
 public:
  virtual ~AnswerWriter() = default;

  // Values of `expression` follow.
  virtual void Begin(Expression const& expression) = 0;
  // Makes the value ready for `Write`, which takes no time. Making may take long: it looks at
  // `is_to_stop` now and then. Nothing is ready unless `kReady`.
  virtual Preparation Prepare(Value const& value, FunctionRef<bool()> is_to_stop) = 0;
  virtual void Write() = 0;
  // Ends what was begun, or reports an expression that was refused or not to be evaluated.
  virtual void End(Report const& report) = 0;

  // Whether values that are property lists need no text.
  virtual bool ShowsPropertyLists() const { return false; }
};

// Values go to `answers`; messages to `errors`, but for JSON, whose objects hold them. A label
// stands before each line of a text and of a message, in leading columns, or in the object.
std::unique_ptr<AnswerWriter> MakeAnswerWriter(Format format, Output& answers, Output& errors,
                                               AnswerLabel const& label);

// The one of them in JSON, apart since the library it is written with is heavy to include.
std::unique_ptr<AnswerWriter> MakeJsonWriter(Output& answers, AnswerLabel const& label);

}  // namespace gatotu::host
