#include <nlohmann/json.hpp>
#include <utility>

#include "evaluator/plugin/values.h"
#include "host/answer_writer.h"
#include "host/property_list_answers.h"
#include "host/property_list_json.h"
#include "host/shown_text.h"

namespace gatotu::host {
namespace {

using Json = nlohmann::ordered_json;

std::string Text(std::string_view bytes) {
  std::string storage;
  return std::string(ShownText(bytes, storage));
}

// Of an expression that is not compiled to be shown strings have no text.
std::string_view StringOf(Value const& value) {
  auto const& string = *static_cast<inspector_string const*>(value.Address());
  return {reinterpret_cast<char const*>(string.start), string.length};
}

Json Texts(std::vector<std::string> const& texts) {
  Json result = Json::array();
  for (std::string const& text : texts) result.push_back(Text(text));
  return result;
}

std::string Dump(Json const& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// False when a property list is too long for the answer.
bool AppendJson(Value const& value, std::string& text) {
  switch (value.Type().kind) {
    case ValueType::Kind::kInteger:
      text += std::to_string(value.Integer());
      return true;
    case ValueType::Kind::kBoolean:
      text += value.Boolean() ? "true" : "false";
      return true;
    case ValueType::Kind::kHertz:
      text += std::to_string(static_cast<hertz const*>(value.Address())->count);
      return true;
    case ValueType::Kind::kTuple: {
      char separator = '[';
      for (Value const& member : value.Members()) {
        text += std::exchange(separator, ',');
        if (!AppendJson(member, text)) return false;
      }
      text += ']';
      return true;
    }
    case ValueType::Kind::kString:
      text += Dump(Text(StringOf(value)));
      return true;
    case ValueType::Kind::kObject:
      break;
  }
  if (CFTypeRef const list = PropertyListOf(value)) {
    return AppendPropertyListJson(list, text, kMostPropertyListBytes);
  }
  text += Dump(Text(value.Text()));
  return true;
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
    values_.clear();
  }

  bool Write(Value const& value) override {
    std::size_t const length = values_.size();
    if (length > 0) values_ += ',';
    if (AppendJson(value, values_)) return true;
    values_.resize(length);
    return false;
  }

  bool ShowsPropertyLists() const override { return true; }

  void End(Report const& report) override {
    Json object = {{"expression", Text(report.text)}};
    if (report.expression != nullptr) object["type"] = Text(report.expression->Type().name);
    answers_.Write(Members(object));
    if (report.is_evaluated) {
      bool const is_held_back = !is_many_ && !report.diagnostics.empty();
      answers_.Write(",\"values\":[");
      if (!is_held_back) answers_.Write(values_);
      answers_.Write("]");
    }
    answers_.Write("," + Members(Remarks(report)).substr(1) + "}\n");
    answers_.Flush();
  }

 private:
  // The object without its closing brace.
  static std::string Members(Json const& object) {
    std::string text = Dump(object);
    text.pop_back();
    return text;
  }

  // All that stands behind the values.
  static Json Remarks(Report const& report) {
    Json object = Json::object();
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
    return object;
  }

  Output& answers_;
  bool is_many_ = false;
  std::string values_;  // their JSON, with commas between
};

}  // namespace

std::unique_ptr<AnswerWriter> MakeJsonWriter(Output& answers) {
  return std::make_unique<JsonWriter>(answers);
}

}  // namespace gatotu::host
