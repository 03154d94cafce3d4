#include "inspectors/activedirectory/security_identifier.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "inspectors/activedirectory/directory/sid.h"

security_identifier::security_identifier(std::string const& text)
    : sid_(XQConvertStringSidToSid(ConstData(text))) {}

std::string security_identifier::Text() const { return XQConvertSidToStringSid(ConstData(sid_)); }

bool operator==(security_identifier const& left, security_identifier const& right) {
  return XQEqualSid(ConstData(left.sid_), ConstData(right.sid_));
}

inspector_string AsString(security_identifier const& identifier) {
  return CopyToInspectorString(ConstData(identifier.Text()));
}

inspector_string sid_string_of(security_identifier const& identifier) {
  return AsString(identifier);
}

inspector_string domain_name_of(security_identifier const&) { throw NoSuchObject(); }
inspector_string account_name_of(security_identifier const&) { throw NoSuchObject(); }

namespace {

Type<security_identifier, kNoFingerprinting> identifier_type;
Property<security_identifier, inspector_string> component_string("component string",
                                                                 "component strings", sid_string_of,
                                                                 nullptr);
Cast<security_identifier, inspector_string> text("string", AsString, DependsOnlyOnParameters);
RelationEqual<security_identifier, security_identifier> equal(DependsOnlyOnParameters);

}  // namespace
