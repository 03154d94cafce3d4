// The registrations as the compiler sees them: types with their bases, properties by phrase,
// casts and operators by type. Built from the registry on demand, then immutable; an expression
// keeps the index it was compiled with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "evaluator/evaluator.h"
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
  std::vector<PropertyEntry const*> properties;  // of this very type
  std::vector<CastEntry const*> casts;           // likewise
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
  static std::shared_ptr<VocabularyIndex const> Current();

  VocabularyIndex(VocabularyIndex const&) = delete;
  VocabularyIndex& operator=(VocabularyIndex const&) = delete;

  // Null when no property has that name.
  std::vector<PhraseUse> const* FindPhrase(std::string_view normalised) const;
  bool IsCastName(std::string_view normalised) const;
  std::size_t LongestPhrase() const { return longest_phrase_; }  // in words
  std::size_t LongestCast() const { return longest_cast_; }

  TypeEntry const* FindType(std::string_view name) const;
  TypeEntry const& World() const { return *world_; }
  TypeEntry const& String() const { return *string_; }
  TypeEntry const& Integer() const { return *integer_; }
  TypeEntry const& Boolean() const { return *boolean_; }

  // The nearest along the bases of the type or types; null when there is none.
  CastEntry const* FindCast(TypeEntry const& type, std::string_view name) const;
  OperatorEntry const* FindOperator(int code, TypeEntry const& left, TypeEntry const& right) const;

  std::deque<PropertyEntry> const& Properties() const { return properties_; }
  std::deque<CastEntry> const& Casts() const { return casts_; }
  std::deque<TypeEntry> const& Types() const { return types_; }

 private:
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>{}(name);
    }
  };
  template <class T>
  using ByName = std::unordered_map<std::string, T, NameHash, std::equal_to<>>;

  VocabularyIndex();
  TypeEntry* MentionType(char const* name);
  void AddTypes();
  void AddProperties();
  void AddCasts();
  void AddOperators();
  void AddPhrase(std::string const& name, PhraseUse use);

  std::deque<TypeEntry> types_;
  std::deque<PropertyEntry> properties_;
  std::deque<CastEntry> casts_;
  std::vector<OperatorEntry> operators_[kOperatorEndsWith + 1];
  ByName<TypeEntry*> types_by_name_;
  ByName<std::vector<PhraseUse>> phrases_;
  ByName<std::size_t> cast_names_;
  std::size_t longest_phrase_ = 0;
  std::size_t longest_cast_ = 0;
  TypeEntry const* world_;
  TypeEntry const* string_;
  TypeEntry const* integer_;
  TypeEntry const* boolean_;
};

// Lower case, one blank between words, none around.
std::string NormalisedName(std::string_view name);

// Whether the type is the base or derived from it.
bool IsDerivedFrom(TypeEntry const& type, TypeEntry const& base);

bool IsParametersOnly(FingerprintFunction fingerprint);

}  // namespace gatotu
