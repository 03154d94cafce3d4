#include "evaluator/value_shower.h"

#include <charconv>
#include <string>

#include "evaluator/grammar_plans.h"
#include "evaluator/property_finder.h"

namespace gatotu {
namespace {

constexpr std::size_t kTextRoom = 24;  // the longest 64-bit integer, and an inspector_string

std::string_view AsView(inspector_string const& string) {
  return {reinterpret_cast<char const*>(string.start), string.length};
}

// Where the values of a plan are written: of a collection, its first part.
Plan const* PlanOfValues(Plan const* plan) {
  while (plan != nullptr && dynamic_cast<CollectionPlan const*>(plan) != nullptr) {
    plan = static_cast<CollectionPlan const*>(plan)->children[0].get();
  }
  return plan;
}

// The part of the expression that is a member of the tuple, when it is written as one.
Plan const* PlanOfMember(Plan const* plan, std::size_t index) {
  auto const* tuple = dynamic_cast<TuplePlan const*>(plan);
  return tuple != nullptr ? PlanOfValues(tuple->children[index].get()) : nullptr;
}

}  // namespace

ValueShower::ValueShower(Plan const& plan, ValueType const& value_type, bool is_shown,
                         VocabularyIndex& vocabulary, FrameLayout& layout, Diagnostics& diagnostics)
    : is_shown_(is_shown), span_(plan.span) {
  nodes_.emplace_back();
  AddNode(0, PlanOfValues(&plan), *plan.type, value_type, vocabulary, layout, diagnostics);
}

void ValueShower::AddNode(std::size_t index, Plan const* plan, StaticType const& type,
                          ValueType const& value_type, VocabularyIndex& vocabulary,
                          FrameLayout& layout, Diagnostics& diagnostics) {
  Node node;
  node.type = &value_type;
  node.slot = layout.Reserve(kTextRoom);
  node.first_member = nodes_.size();
  node.member_count = type.members.size();
  nodes_.resize(nodes_.size() + node.member_count);
  if (is_shown_ && value_type.kind == ValueType::Kind::kObject) {
    node.cast = vocabulary.FindCast(*type.entry, "string");
    if (node.cast == nullptr || node.cast->result != &vocabulary.String()) {
      diagnostics.Report(
          "not-showable", plan != nullptr ? plan->span : span_,
          type.NameWithArticle() + " cannot be shown as text; ask for a property of it", {},
          {PropertyFinder(vocabulary, diagnostics).DescribeProperties(*type.entry)});
    }
  }
  nodes_[index] = node;
  for (std::size_t i = 0; i < node.member_count; ++i) {
    AddNode(node.first_member + i, PlanOfMember(plan, i), *type.members[i], value_type.members[i],
            vocabulary, layout, diagnostics);
  }
}

Flow ValueShower::Show(Run& run, void const* address, Value const*& shown) const {
  shown = run.Storage().values.data();
  return ShowNode(run, 0, address);
}

Flow ValueShower::ShowNode(Run& run, std::size_t index, void const* address) const {
  Node const& node = nodes_[index];
  Value& value = run.Storage().values[index];
  value.type_ = node.type;
  value.address_ = node.type->kind == ValueType::Kind::kTuple ? nullptr : address;
  value.text_ = {};
  value.members_ = run.Storage().values.data() + node.first_member;
  value.member_count_ = node.member_count;
  for (std::size_t i = 0; i < node.member_count; ++i) {
    Flow flow = ShowNode(run, node.first_member + i, static_cast<void const* const*>(address)[i]);
    if (flow != Flow::kContinue) return flow;
  }
  if (!is_shown_ || MakeText(run, node, value, address)) return Flow::kContinue;
  return CastText(run, node, value, address);
}

// False for a type whose text is its cast's.
bool ValueShower::MakeText(Run& run, Node const& node, Value& value, void const* address) const {
  switch (node.type->kind) {
    case ValueType::Kind::kTuple:
      return true;
    case ValueType::Kind::kString:
      value.text_ = AsView(*static_cast<inspector_string const*>(address));
      return true;
    case ValueType::Kind::kBoolean:
      value.text_ = *static_cast<bool const*>(address) ? "true" : "false";
      return true;
    case ValueType::Kind::kInteger:
    case ValueType::Kind::kHertz: {
      char* room = static_cast<char*>(run.Slot(node.slot));
      auto end = std::to_chars(room, room + kTextRoom, *static_cast<std::int64_t const*>(address));
      value.text_ = {room, static_cast<std::size_t>(end.ptr - room)};
      return true;
    }
    case ValueType::Kind::kObject:
      return false;
  }
  return false;
}

Flow ValueShower::CastText(Run& run, Node const& node, Value& value, void const* address) const {
  std::size_t evidence_begin = run.EvidencePosition();
  void* slot = run.Slot(node.slot);
  Got got = run.Call("as string", span_, [&] {
    node.cast->record->cast(slot, address, node.cast->record->context);
    return true;
  });
  if (got == Got::kFailed) return Flow::kFail;
  if (run.IsToStop()) return run.FailStopped(span_);
  if (got == Got::kNothing) return run.FailNoSuchObject(span_, evidence_begin);
  value.text_ = AsView(*static_cast<inspector_string const*>(slot));
  return Flow::kContinue;
}

}  // namespace gatotu
