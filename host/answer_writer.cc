#include "host/answer_writer.h"

#include "host/shown_text.h"

namespace gatotu::host {
namespace {

std::string Shown(std::string_view text) {
  std::string shown;
  AppendShown(shown, text);
  return shown;
}

// How the members of a tuple are set apart and protected.
class LineStyle {
 public:
  explicit LineStyle(Format format) : format_(format) {}

  std::string_view Separator() const {
    switch (format_) {
      case Format::kCsv:
        return ",";
      case Format::kTsv:
        return "\t";
      default:
        return ", ";
    }
  }

  void AppendField(std::string& line, std::string_view field) const {
    if (format_ == Format::kCsv) {
      AppendQuoted(line, field);
    } else if (format_ == Format::kTsv) {
      AppendEscaped(line, field);
    } else {
      line += field;
    }
  }

  // What tells whose the answer is: a column, or what ends with a colon as grep writes it.
  void AppendLead(std::string& lead, std::string_view name) const {
    bool const is_column = format_ != Format::kText;
    is_column ? AppendField(lead, name) : AppendShown(lead, name);
    lead += is_column ? Separator() : ": ";
  }

  std::string Labelled(std::string const& lead, std::string const& record) const {
    return format_ == Format::kText ? EachLineAfter(lead, record) : lead + record;
  }

 private:
  // RFC 4180: quotes around what holds a separator, a quote or a line end; quotes doubled.
  static void AppendQuoted(std::string& line, std::string_view field) {
    if (field.find_first_of(",\"\r\n") == std::string_view::npos) {
      line += field;
      return;
    }
    line += '"';
    for (char const c : field) line.append(c == '"' ? 2 : 1, c);
    line += '"';
  }

  static void AppendEscaped(std::string& line, std::string_view field) {
    for (char const c : field) {
      switch (c) {
        case '\t':
          line += "\\t";
          break;
        case '\n':
          line += "\\n";
          break;
        case '\r':
          line += "\\r";
          break;
        case '\\':
          line += "\\\\";
          break;
        default:
          line += c;
      }
    }
  }

  Format format_;
};

class LineWriter final : public AnswerWriter {
 public:
  LineWriter(Format format, Output& answers, Output& errors, AnswerLabel const& label)
      : style_(format), answers_(answers), errors_(errors), label_(label) {
    if (!label_.IsEmpty()) message_lead_ = Shown(label_.machine) + ": ";
  }

  void Begin(Expression const& expression) override {
    is_many_ = expression.IsMany();
    line_.clear();
    lead_.clear();
    if (label_.IsEmpty()) return;
    style_.AppendLead(lead_, label_.machine);
    if (label_.names_expression) style_.AppendLead(lead_, expression.Text());
  }

  Preparation Prepare(Value const& value, FunctionRef<bool()>) override {
    line_.clear();
    Append(value);
    line_ += '\n';
    if (!label_.IsEmpty()) line_ = style_.Labelled(lead_, line_);
    return Preparation::kReady;
  }

  void Write() override {
    if (is_many_) answers_.Write(line_);
  }

  void End(Report const& report) override {
    if (report.is_evaluated && report.diagnostics.empty() && !is_many_) answers_.Write(line_);
    answers_.Write(report.explanation);
    // What was answered appears before what is said about it.
    answers_.Flush();
    WriteMessages(report);
    errors_.Flush();
  }

 private:
  void Append(Value const& value) {
    if (value.Type().kind != ValueType::Kind::kTuple) {
      style_.AppendField(line_, ShownText(value.Text(), decoded_));
      return;
    }
    bool is_first = true;
    for (Value const& member : value.Members()) {
      if (!is_first) line_ += style_.Separator();
      is_first = false;
      Append(member);
    }
  }

  void WriteMessages(Report const& report) {
    for (Diagnostic diagnostic : report.diagnostics) {
      diagnostic.notes.insert(diagnostic.notes.end(), report.reasons.begin(), report.reasons.end());
      Say(Render(diagnostic, report.text));
    }
    if (report.has_evidence && report.is_evaluated) {
      Say("evidence:\n");
      for (Consultation const& entry : report.evidence) {
        std::string line = "  " + PrintableText(entry.source) + ": ";
        line += machine::NameOf(entry.outcome);
        if (entry.bytes > 0) line += ", " + std::to_string(entry.bytes) + " bytes";
        Say(line + '\n');
      }
    }
    if (report.has_timing) {
      std::string line = "compiled in " + std::to_string(report.compile_microseconds) + " us";
      if (report.is_evaluated) {
        line += ", evaluated in " + std::to_string(report.evaluate_microseconds) + " us";
      }
      Say(line + '\n');
    }
  }

  void Say(std::string const& lines) { errors_.Write(EachLineAfter(message_lead_, lines)); }

  LineStyle style_;
  Output& answers_;
  Output& errors_;
  AnswerLabel label_;
  std::string message_lead_;
  std::string lead_;  // of the expression's answers
  bool is_many_ = false;
  std::string line_;
  std::string decoded_;
};

}  // namespace

std::unique_ptr<AnswerWriter> MakeAnswerWriter(Format format, Output& answers, Output& errors,
                                               AnswerLabel const& label) {
  if (format == Format::kJson) return MakeJsonWriter(answers, label);
  return std::make_unique<LineWriter>(format, answers, errors, label);
}

}  // namespace gatotu::host
