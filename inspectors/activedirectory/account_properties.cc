#include "inspectors/activedirectory/account_properties.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/inspector_strings.h"
#include "frame/registration.h"

namespace {

using Computer = ActiveDirectoryLocalComputer;
using User = ActiveDirectoryLocalUser;
using Group = ActiveDirectoryGroup;

inspector_string Copied(std::string const& text) {
  if (text.empty()) throw NoSuchObject();
  return CopyToInspectorString(ConstData(text));
}

moment SampleTimeOf(ActiveDirectoryBase const& record) {
  return AsMoment(record.GetLastSampleTime());
}

template <class Account>
Group GroupNamed(unsigned char const* name, unsigned long length, Account const& account) {
  Group group;
  if (!account.GetGroup({reinterpret_cast<char const*>(name), length}, group)) {
    throw NoSuchObject();
  }
  return group;
}

}  // namespace

inspector_string DistinguishedNameOfActiveDirectoryComputer(Computer const& computer) {
  return Copied(computer.GetDistinguishedName());
}

inspector_string DistinguishedNameErrorMessageOfActiveDirectoryComputer(Computer const& computer) {
  return Copied(computer.GetErrorMessage());
}

inspector_string GroupsErrorMessageOfActiveDirectoryComputer(Computer const& computer) {
  return Copied(computer.GetGroupsErrorMessage());
}

moment DistinguishedNameSampleTimeOfActiveDirectoryComputer(Computer const& computer) {
  return SampleTimeOf(computer);
}

Group NamedGroupObjectOfActiveDirectoryComputer(unsigned char const* name, unsigned long length,
                                                Computer const& computer) {
  return GroupNamed(name, length, computer);
}

inspector_string NameOfActiveDirectoryUser(User const& user) {
  if (user.GetDistinguishedName().empty()) throw NoSuchObject();
  return Copied(user.GetName());
}

inspector_string DistinguishedNameOfActiveDirectoryUser(User const& user) {
  return Copied(user.GetDistinguishedName());
}

inspector_string DistinguishedNameErrorMessageOfActiveDirectoryUser(User const& user) {
  return Copied(user.GetErrorMessage());
}

inspector_string GroupsErrorMessageOfActiveDirectoryUser(User const& user) {
  return Copied(user.GetGroupsErrorMessage());
}

moment DistinguishedNameSampleTimeOfActiveDirectoryUser(User const& user) {
  return SampleTimeOf(user);
}

Group NamedGroupObjectOfActiveDirectoryUser(unsigned char const* name, unsigned long length,
                                            User const& user) {
  Group group = GroupNamed(name, length, user);
  if (group.GetDistinguishedName().empty()) throw NoSuchObject();
  return group;
}

inspector_string NameOfActiveDirectoryGroup(Group const& group) {
  if (group.GetSid().empty()) throw NoSuchObject();
  return Copied(group.GetName());
}

inspector_string DistinguishedNameOfActiveDirectoryGroup(Group const& group) {
  return Copied(group.GetDistinguishedName());
}

inspector_string DistinguishedNameErrorMessageOfActiveDirectoryGroup(Group const& group) {
  return Copied(group.GetErrorMessage());
}

security_identifier SidOfActiveDirectoryGroup(Group const& group) {
  security_identifier identifier(group.GetSid());
  if (identifier.IsEmpty()) throw NoSuchObject();
  return identifier;
}

moment DistinguishedNameSampleTimeOfActiveDirectoryGroup(Group const& group) {
  return SampleTimeOf(group);
}

Group ADAccountGroupsIterator::First(ActiveDirectoryAccount const& account) {
  groups_ = account.GetGroups();
  position_ = 0;
  return Next(account);
}

Group ADAccountGroupsIterator::Next(ActiveDirectoryAccount const&) {
  while (position_ < groups_.size()) {
    Group const& group = groups_[position_++];
    if (!group.GetSid().empty()) return group;
  }
  throw NoSuchObject();
}

namespace {

Type<Computer, kNoFingerprinting> computer_type;
Property<Computer, inspector_string> computer_distinguished_name(
    "distinguished name", "distinguished names", DistinguishedNameOfActiveDirectoryComputer,
    nullptr);
Property<Computer, inspector_string> computer_message(
    "distinguished name error message", "distinguished name error messages",
    DistinguishedNameErrorMessageOfActiveDirectoryComputer, nullptr);
Property<Computer, inspector_string> computer_groups_message(
    "groups error message", "groups error messages", GroupsErrorMessageOfActiveDirectoryComputer,
    nullptr);
Property<Computer, moment> computer_sample_time(
    "sample time", "sample times", DistinguishedNameSampleTimeOfActiveDirectoryComputer, nullptr);
NamedProperty<Computer, Group> computer_group("group", "groups",
                                              NamedGroupObjectOfActiveDirectoryComputer, nullptr);
IteratedProperty<ADLocalComputerGroupsIterator, Computer, Group> computer_groups("group", "groups",
                                                                                 nullptr);

Type<User, kNoFingerprinting> user_type;
Property<User, inspector_string> user_name("name", "names", NameOfActiveDirectoryUser, nullptr);
Property<User, inspector_string> user_distinguished_name("distinguished name",
                                                         "distinguished names",
                                                         DistinguishedNameOfActiveDirectoryUser,
                                                         nullptr);
Property<User, inspector_string> user_message("distinguished name error message",
                                              "distinguished name error messages",
                                              DistinguishedNameErrorMessageOfActiveDirectoryUser,
                                              nullptr);
Property<User, inspector_string> user_groups_message("groups error message",
                                                     "groups error messages",
                                                     GroupsErrorMessageOfActiveDirectoryUser,
                                                     nullptr);
Property<User, moment> user_sample_time("sample time", "sample times",
                                        DistinguishedNameSampleTimeOfActiveDirectoryUser, nullptr);
NamedProperty<User, Group> user_group("group", "groups", NamedGroupObjectOfActiveDirectoryUser,
                                      nullptr);
IteratedProperty<ADLocalUserGroupsIterator, User, Group> user_groups("group", "groups", nullptr);

Type<Group, kNoFingerprinting> group_type;
Property<Group, inspector_string> group_name("name", "names", NameOfActiveDirectoryGroup, nullptr);
Property<Group, inspector_string> group_distinguished_name("distinguished name",
                                                           "distinguished names",
                                                           DistinguishedNameOfActiveDirectoryGroup,
                                                           nullptr);
Property<Group, inspector_string> group_message("distinguished name error message",
                                                "distinguished name error messages",
                                                DistinguishedNameErrorMessageOfActiveDirectoryGroup,
                                                nullptr);
Property<Group, security_identifier> sid("sid", "sids", SidOfActiveDirectoryGroup, nullptr);
Property<Group, moment> group_sample_time("sample time", "sample times",
                                          DistinguishedNameSampleTimeOfActiveDirectoryGroup,
                                          nullptr);

}  // namespace
