#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "evaluator/plugin/values.h"
#include "host/answer_writer.h"
#include "host/machine_failure.h"
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
  JsonWriter(Output& answers, AnswerLabel const& label)
      : answers_(answers), machine_(label.machine) {}

  void Begin(Expression const& expression) override {
    expression_ = &expression;
    value_bytes_ = 0;
  }

  Preparation Prepare(Value const& value, FunctionRef<bool()> is_to_stop) override {
    prepared_.assign(value_bytes_ == 0 ? "" : ",");
    std::size_t const most =
        kMostPropertyListBytes - std::min(kMostPropertyListBytes, value_bytes_);
    return AppendJson(value, prepared_, most, is_to_stop);
  }

  void Write() override {
    value_bytes_ += prepared_.size();
    if (!expression_->IsMany()) return held_back_.swap(prepared_);
    OpenObject(expression_->Text(), expression_, Values::kFollow);
    answers_.Write(prepared_);
  }

  bool ShowsPropertyLists() const override { return true; }

  void End(Report const& report) override {
    OpenObject(report.text, report.expression,
               report.is_evaluated ? Values::kFollow : Values::kNone);
    if (report.is_evaluated && report.diagnostics.empty()) answers_.Write(held_back_);
    if (report.is_evaluated) answers_.Write("]");
    answers_.Write("," + Members(Remarks(report)).substr(1) + "}\n");
    answers_.Flush();
    is_open_ = false;
    held_back_.clear();
  }

 private:
  enum class Values { kNone, kFollow };

  // What stands before the values, once an expression.
  void OpenObject(std::string_view text, Expression const* expression, Values values) {
    if (std::exchange(is_open_, true)) return;
    Json object = Json::object();
    if (!machine_.empty()) object["machine"] = Text(machine_);
    object["expression"] = Text(text);
    if (expression != nullptr) object["type"] = Text(expression->Type().name);
    answers_.Write(Members(object));
    if (values == Values::kFollow) answers_.Write(",\"values\":[");
  }

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
  std::string machine_;  // empty where one is asked
  Expression const* expression_ = nullptr;
  bool is_open_ = false;         // what stands before the values is written
  std::size_t value_bytes_ = 0;  // of the values' JSON, with commas between
  std::string prepared_;         // what comes next
  std::string held_back_;        // of an expression of exactly one value
};

}  // namespace

std::string JsonLineOf(MachineFailure const& failure) {
  return Dump({{"machine", Text(failure.machine)},
               {"error", {{"code", failure.code}, {"message", Text(failure.message)}}}}) +
         '\n';
}

std::unique_ptr<AnswerWriter> MakeJsonWriter(Output& answers, AnswerLabel const& label) {
  return std::make_unique<JsonWriter>(answers, label);
}

}  // namespace gatotu::host
