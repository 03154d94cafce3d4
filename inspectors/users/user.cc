#include "inspectors/users/user.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "inspectors/activedirectory/active_directory_server.h"

namespace {

std::string TextOf(unsigned char const* start, unsigned long length) {
  return {reinterpret_cast<char const*>(start), length};
}

inspector_string Copied(std::string const& text) { return CopyToInspectorString(ConstData(text)); }

// What the directory's calls give; however they fail, there is no such object.
template <typename Read>
auto FromDirectory(Read const& read) {
  try {
    return read();
  } catch (...) {
    throw NoSuchObject();
  }
}

}  // namespace

std::string user::ValueOf(std::string_view attribute) const {
  std::string value;
  if (!FromDirectory([&] { return GetODRecordSingleValue(record_, attribute, value); })) {
    throw NoSuchObject();
  }
  return value;
}

user_attribute user::NamedAttr(std::string_view attribute) const {
  return {std::string(attribute), ValueOf(attribute)};
}

std::string user::Name() const { return ValueOf("dsAttrTypeStandard:RecordName"); }

std::string user::ID() const { return ValueOf("dsAttrTypeStandard:UniqueID"); }

std::string user::PrimaryGroupID() const { return ValueOf("dsAttrTypeStandard:PrimaryGroupID"); }

std::string user::HomeDirPath() const { return ValueOf("dsAttrTypeStandard:NFSHomeDirectory"); }

user_iterator::user_iterator()
    : records_(std::make_shared<ODRecordList>(
          FromDirectory([] { return GetODObjectListOfType(kUsersRecordType); }))) {}

user user_iterator::First() {
  place_ = {};
  return Next();
}

user user_iterator::Next() {
  auto record = records_->Next(place_);
  if (!record) throw NoSuchObject();
  return user(*std::move(record));
}

user_attribute user_attr_iterator::First(user const& user) {
  attributes_ = FromDirectory([&] { return user.Record().Attributes(); });
  position_ = 0;
  return Next(user);
}

user_attribute user_attr_iterator::Next(user const&) {
  if (position_ == attributes_.size()) throw NoSuchObject();
  ODAttribute const& attribute = attributes_[position_++];
  return {attribute.name, attribute.value};
}

user named_user(unsigned char const* name, unsigned long length) {
  return user(
      FromDirectory([&] { return GetODObjectOfType(kUsersRecordType, TextOf(name, length)); }));
}

inspector_string user_name(user const& user) { return Copied(user.Name()); }
inspector_string user_id(user const& user) { return Copied(user.ID()); }
inspector_string user_primary_group_id(user const& user) { return Copied(user.PrimaryGroupID()); }

folder user_home_dir(user const& user) {
  return MacintoshPlatform::posix_folder_of_world(user.HomeDirPath());
}

ActiveDirectoryLocalUser named_ad_user(user const& user) {
  ActiveDirectoryLocalUser found;
  bool const is_found =
      ActiveDirectoryServer::The().GetLocalUser(CurrentDirectoryContext(), user.Name(), found);
  if (!is_found || found.GetDistinguishedName().empty()) throw NoSuchObject();
  return found;
}

user_attribute named_attribute(unsigned char const* name, unsigned long length, user const& user) {
  return user.NamedAttr(TextOf(name, length));
}

inspector_string key_of_attribute(user_attribute const& attribute) { return Copied(attribute.key); }

inspector_string value_of_attribute(user_attribute const& attribute) {
  return Copied(attribute.value);
}

inspector_string asString(user_attribute const& attribute) {
  return Copied(attribute.key + ": " + attribute.value);
}

namespace {

Type<user, kNoFingerprinting> user_type;
Type<user_attribute, kNoFingerprinting> user_attribute_type;
IteratedGlobalProperty<user_iterator, user> users("user", "users", nullptr);
IteratedGlobalProperty<user_iterator, user> local_users("local user", "local users", nullptr);
NamedGlobalProperty<user> user_by_name("user", nullptr, named_user, nullptr);
Property<user, inspector_string> name("name", "names", user_name, nullptr);
Property<user, inspector_string> id("id", "ids", user_id, nullptr);
Property<user, inspector_string> primary_group_id("primary group id", "primary group ids",
                                                  user_primary_group_id, nullptr);
Property<user, folder> home_directory("home directory", "home directories", user_home_dir, nullptr);
Property<user, ActiveDirectoryLocalUser> ad_user("active directory user", "active directory users",
                                                 named_ad_user, nullptr);
NamedProperty<user, user_attribute> attribute_by_name("attribute", "attributes", named_attribute,
                                                      nullptr);
IteratedProperty<user_attr_iterator, user, user_attribute> attributes("attribute", "attributes",
                                                                      nullptr);
Property<user_attribute, inspector_string> key("key", "keys", key_of_attribute, nullptr);
Property<user_attribute, inspector_string> value("value", "values", value_of_attribute, nullptr);
Cast<user_attribute, inspector_string> text("string", asString, DependsOnlyOnParameters);

}  // namespace
