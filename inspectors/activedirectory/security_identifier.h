// A security identifier as a value of its own: the binary form, owned.
#pragma once

#include <string>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"

class security_identifier {
 public:
  // Holds no SID, as does one of a text that is none.
  security_identifier() = default;
  explicit security_identifier(std::string const& text);
  // The SID goes over: it has one owner.
  security_identifier(security_identifier&&) noexcept = default;
  security_identifier& operator=(security_identifier&&) noexcept = default;

  bool IsEmpty() const { return sid_.empty(); }
  // Empty without a SID.
  std::string Text() const;

  // What holds no SID equals nothing, itself neither.
  friend bool operator==(security_identifier const& left, security_identifier const& right);

 private:
  std::string sid_;
};

template <>
struct InspectorTypeName<security_identifier> {
  static constexpr char const* kName = "security identifier";
};

inspector_string AsString(security_identifier const& identifier);
inspector_string sid_string_of(security_identifier const& identifier);
// Whose it is would have to be asked of the directory: always `NoSuchObject`.
[[noreturn]] inspector_string domain_name_of(security_identifier const& identifier);
[[noreturn]] inspector_string account_name_of(security_identifier const& identifier);
