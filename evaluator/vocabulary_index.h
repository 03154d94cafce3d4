// The registrations as the compiler sees them: types with their bases, properties by phrase,
// casts and operators by type. An expression keeps the index it was compiled with.
//
// An index is of what was registered when it was made, and is asked while that is so, under the
// registry's lock. Its parts are made when they are asked for first: most runs of the command
// compile one expression, which needs few of the registrations. What was handed out never changes.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "evaluator/evaluator.h"
#include "evaluator/phrase_table.h"
#include "evaluator/registry.h"

namespace gatotu {

struct PropertyEntry;
struct CastEntry;

struct TypeEntry {
  std::string name;
  TypeEntry const* base = nullptr;
  bool is_registered = false;
  std::size_t size = 0;
  InspectorDestroy destroy = nullptr;
  bool is_copyable = false;
  ValueType::Kind kind = ValueType::Kind::kObject;
  // Of this very type; to be asked of the index, which makes them.
  std::vector<PropertyEntry const*> properties;
  std::vector<CastEntry const*> casts;
};

struct PropertyEntry {
  PropertyRecord const* record = nullptr;
  std::string singular;  // lower case, one blank between words
  std::string plural;
  TypeEntry const* parameter = nullptr;  // null for none
  TypeEntry const* object = nullptr;     // the world is a type of its own, with an empty name
  TypeEntry const* result = nullptr;
  bool is_iterated = false;
  bool depends_only_on_parameters = false;
};

struct CastEntry {
  CastRecord const* record = nullptr;
  std::string name;
  TypeEntry const* result = nullptr;
  bool depends_only_on_parameters = false;
};

struct OperatorEntry {
  OperatorRecord const* record = nullptr;
  TypeEntry const* left = nullptr;
  TypeEntry const* right = nullptr;
  TypeEntry const* result = nullptr;
  bool depends_only_on_parameters = false;
};

// A property under one of its two names.
struct PhraseUse {
  PropertyEntry const* property;
  bool is_plural;
};

class VocabularyIndex {
 public:
  // The index of what is registered now; the registry's lock is held by the caller.
  static std::shared_ptr<VocabularyIndex> Current();

  VocabularyIndex(VocabularyIndex const&) = delete;
  VocabularyIndex& operator=(VocabularyIndex const&) = delete;

  // Null when no property has that name.
  std::vector<PhraseUse> const* FindPhrase(std::string_view normalised);
  bool IsCastName(std::string_view normalised);
  std::size_t LongestPhrase() { return Phrases().LongestPhrase(); }  // in words
  std::size_t LongestCast();

  // Null when nothing has registered it.
  TypeEntry const* FindType(std::string_view name);
  TypeEntry const& World() const { return *world_; }
  TypeEntry const& String() const { return *string_; }
  TypeEntry const& Integer() const { return *integer_; }
  TypeEntry const& Boolean() const { return *boolean_; }

  // The nearest along the bases of the type or types; null when there is none.
  CastEntry const* FindCast(TypeEntry const& type, std::string_view name);
  OperatorEntry const* FindOperator(int code, TypeEntry const& left, TypeEntry const& right);

  // Each meaning once, in the order of registration.
  std::vector<PropertyEntry const*> const& Properties();
  std::vector<PropertyEntry const*> const& PropertiesOf(TypeEntry const& type);
  std::deque<CastEntry> const& Casts();
  std::vector<CastEntry const*> const& CastsOf(TypeEntry const& type);

 private:
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>{}(name);
    }
  };
  using OperatorsByCode = std::array<std::vector<OperatorEntry>, kOperatorEndsWith + 1>;

  VocabularyIndex();
  // With its bases; a name that nothing has registered is a type all the same.
  TypeEntry* MentionType(std::string_view name);
  // The entry of that name alone, and whether it is new.
  std::pair<TypeEntry*, bool> NameType(std::string_view name);
  PhraseTable const& Phrases();
  PropertyEntry const& EntryOf(PropertyRecord const& record);
  void AddProperty(PropertyRecord const& record);
  void AddCast(CastRecord const& record);
  OperatorsByCode const& Operators();

  std::deque<TypeEntry> types_;
  std::unordered_map<std::string_view, TypeEntry*> types_by_name_;
  TypeEntry const* world_;
  TypeEntry const* string_;
  TypeEntry const* integer_;
  TypeEntry const* boolean_;

  // Properties that were asked for, and phrases.
  std::unordered_map<PropertyRecord const*, PropertyEntry> entries_;
  std::unordered_map<std::string, std::vector<PhraseUse>, NameHash, std::equal_to<>> phrases_;

  // Parts that are empty until they are asked for.
  std::optional<PhraseTable> phrase_table_;
  std::optional<std::vector<PropertyEntry const*>> properties_;
  std::optional<std::deque<CastEntry>> casts_;
  std::size_t longest_cast_ = 0;
  std::optional<OperatorsByCode> operators_;
};

// Whether the type is the base or derived from it.
bool IsDerivedFrom(TypeEntry const& type, TypeEntry const& base);

bool IsParametersOnly(FingerprintFunction fingerprint);

}  // namespace gatotu
