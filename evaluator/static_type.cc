#include "evaluator/static_type.h"

#include <string_view>
#include <utility>

namespace gatotu {

std::string StaticType::Name() const {
  if (!IsTuple()) return entry->name;
  std::string name = "(";
  for (StaticType const* member : members) {
    if (name.size() > 1) name += ", ";
    name += member->Name();
  }
  return name + ")";
}

std::string StaticType::NameWithArticle() const {
  if (IsTuple()) return "a tuple " + Name();
  if (entry->name.empty()) return "the world";
  // Sounds that the first letter does not tell: "a user", "a usb".
  bool sounds_like_you = entry->name.starts_with("us");
  bool is_vowel = std::string_view("aeiou").find(entry->name[0]) != std::string_view::npos;
  return (is_vowel && !sounds_like_you ? "an " : "a ") + entry->name;
}

StaticType const* StaticTypes::Of(TypeEntry const& entry) {
  for (StaticType const& type : types_) {
    if (type.entry == &entry) return &type;
  }
  return &types_.emplace_back(StaticType{&entry, {}});
}

StaticType const* StaticTypes::OfTuple(std::vector<StaticType const*> members) {
  for (StaticType const& type : types_) {
    if (type.IsTuple() && type.members == members) return &type;
  }
  return &types_.emplace_back(StaticType{nullptr, std::move(members)});
}

StaticType const* CommonType(StaticType const* a, StaticType const* b, StaticTypes& types) {
  if (a == b) return a;
  if (a->IsTuple() || b->IsTuple()) return nullptr;
  int bases = 0;
  for (TypeEntry const* type = a->entry; type != nullptr && bases < 64;
       type = type->base, ++bases) {
    if (IsDerivedFrom(*b->entry, *type)) return types.Of(*type);
  }
  return nullptr;
}

ValueType MakeValueType(StaticType const& type) {
  ValueType made;
  made.kind = type.IsTuple() ? ValueType::Kind::kTuple : type.entry->kind;
  made.name = type.Name();
  for (StaticType const* member : type.members) made.members.push_back(MakeValueType(*member));
  return made;
}

}  // namespace gatotu
