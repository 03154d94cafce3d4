#include <nlohmann/json.hpp>

#include "evaluator/plugin/values.h"
#include "host/answer_writer.h"
#include "host/shown_text.h"

namespace gatotu::host {
namespace {

using Json = nlohmann::ordered_json;

std::string Text(std::string_view bytes) {
  std::string storage;
  return std::string(ShownText(bytes, storage));
}

Json Texts(std::vector<std::string> const& texts) {
  Json result = Json::array();
  for (std::string const& text : texts) result.push_back(Text(text));
  return result;
}

Json JsonOf(Value const& value) {
  switch (value.Type().kind) {
    case ValueType::Kind::kInteger:
      return value.Integer();
    case ValueType::Kind::kBoolean:
      return value.Boolean();
    case ValueType::Kind::kHertz:
      return static_cast<hertz const*>(value.Address())->count;
    case ValueType::Kind::kTuple: {
      Json members = Json::array();
      for (Value const& member : value.Members()) members.push_back(JsonOf(member));
      return members;
    }
    default:
      return Text(value.Text());
  }
}

Json JsonOf(Diagnostic const& diagnostic, std::vector<std::string> const& reasons) {
  Json error = {{"code", diagnostic.code},
                {"message", Text(diagnostic.message)},
                {"line", diagnostic.position.line},
                {"column", diagnostic.position.column},
                {"length", diagnostic.position.length}};
  if (!diagnostic.suggestion.empty()) error["suggestion"] = Text(diagnostic.suggestion);
  if (!diagnostic.notes.empty()) error["notes"] = Texts(diagnostic.notes);
  if (!reasons.empty()) error["reasons"] = Texts(reasons);
  return error;
}

Json JsonOf(Consultation const& consultation) {
  return {{"source", Text(consultation.source)},
          {"outcome", machine::NameOf(consultation.outcome)},
          {"bytes", consultation.bytes}};
}

// One object a line an expression. All errors of an expression stand in "errors" when there are
// several; "error" is the first of them.
class JsonWriter final : public AnswerWriter {
 public:
  explicit JsonWriter(Output& answers) : answers_(answers) {}

  void Begin(Expression const& expression) override {
    is_many_ = expression.IsMany();
    values_ = Json::array();
  }

  void Write(Value const& value) override { values_.push_back(JsonOf(value)); }

  void End(Report const& report) override {
    Json object = {{"expression", Text(report.text)}};
    if (report.expression != nullptr) object["type"] = Text(report.expression->Type().name);
    if (report.is_evaluated) {
      bool const is_held_back = !is_many_ && !report.diagnostics.empty();
      object["values"] = is_held_back ? Json::array() : std::move(values_);
    }
    if (!report.explanation.empty()) object["explanation"] = Text(report.explanation);
    if (!report.diagnostics.empty()) {
      object["error"] = JsonOf(report.diagnostics.front(), report.reasons);
    }
    if (report.diagnostics.size() > 1) {
      Json errors = Json::array();
      for (Diagnostic const& each : report.diagnostics) errors.push_back(JsonOf(each, {}));
      object["errors"] = std::move(errors);
    }
    if (report.has_evidence && report.is_evaluated) {
      Json evidence = Json::array();
      for (Consultation const& each : report.evidence) evidence.push_back(JsonOf(each));
      object["evidence"] = std::move(evidence);
    }
    object["microseconds"] = report.compile_microseconds + report.evaluate_microseconds;
    answers_.Write(object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
    answers_.Flush();
  }

 private:
  Output& answers_;
  bool is_many_ = false;
  Json values_ = Json::array();
};

}  // namespace

std::unique_ptr<AnswerWriter> MakeJsonWriter(Output& answers) {
  return std::make_unique<JsonWriter>(answers);
}

}  // namespace gatotu::host
