#include <algorithm>
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

Preparation AppendJson(CFTypeRef list, std::string& text, std::size_t most,
                       FunctionRef<bool()> is_to_stop) {
  PropertyListJson json(list, text, most);
  for (;;) {
    switch (json.Continue()) {
      case PropertyListJson::State::kMore:
        if (is_to_stop()) return Preparation::kStopped;
        break;
      case PropertyListJson::State::kDone:
        return Preparation::kReady;
      case PropertyListJson::State::kTooLong:
        return Preparation::kTooLong;
    }
  }
}

// Property lists may bring the text to a length of `most`.
Preparation AppendJson(Value const& value, std::string& text, std::size_t most,
                       FunctionRef<bool()> is_to_stop) {
  switch (value.Type().kind) {
    case ValueType::Kind::kInteger:
      text += std::to_string(value.Integer());
      return Preparation::kReady;
    case ValueType::Kind::kBoolean:
      text += value.Boolean() ? "true" : "false";
      return Preparation::kReady;
    case ValueType::Kind::kHertz:
      text += std::to_string(static_cast<hertz const*>(value.Address())->count);
      return Preparation::kReady;
    case ValueType::Kind::kTuple: {
      char separator = '[';
      for (Value const& member : value.Members()) {
        text += std::exchange(separator, ',');
        Preparation const preparation = AppendJson(member, text, most, is_to_stop);
        if (preparation != Preparation::kReady) return preparation;
      }
      text += ']';
      return Preparation::kReady;
    }
    case ValueType::Kind::kString:
      text += Dump(Text(StringOf(value)));
      return Preparation::kReady;
    case ValueType::Kind::kObject:
      break;
  }
  if (CFTypeRef const list = PropertyListOf(value)) {
    return AppendJson(list, text, most, is_to_stop);
  }
  text += Dump(Text(value.Text()));
  return Preparation::kReady;
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

  Preparation Prepare(Value const& value, FunctionRef<bool()> is_to_stop) override {
    prepared_.assign(values_.empty() ? "" : ",");
    std::size_t const most =
        kMostPropertyListBytes - std::min(kMostPropertyListBytes, values_.size());
    return AppendJson(value, prepared_, most, is_to_stop);
  }

  void Write() override {
    if (values_.empty()) {
      values_.swap(prepared_);
    } else {
      values_ += prepared_;
    }
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
  std::string values_;    // their JSON, with commas between
  std::string prepared_;  // what comes next
};

}  // namespace

std::unique_ptr<AnswerWriter> MakeJsonWriter(Output& answers) {
  return std::make_unique<JsonWriter>(answers);
}

}  // namespace gatotu::host
