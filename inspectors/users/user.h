// The accounts of the machine, as its directory knows them.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "inspectors/activedirectory/directory/record_lookup.h"
#include "portable_inspectors/filesystem_object.h"

inline constexpr char kUsersRecordType[] = "dsRecTypeStandard:Users";

struct user_attribute {
  std::string key;  // the attribute's directory name
  std::string value;
};

template <>
struct InspectorTypeName<user_attribute> {
  static constexpr char const* kName = "user attribute";
};

// One record of the directory as it was when it was found; copies share it. What the record lacks
// is `NoSuchObject`.
class user {
 public:
  explicit user(ODRecord record) : record_(std::move(record)) {}

  ODRecord const& Record() const { return record_; }
  user_attribute NamedAttr(std::string_view attribute) const;

  std::string Name() const;
  // Numbers stay the text that the record has.
  std::string ID() const;
  std::string PrimaryGroupID() const;
  std::string HomeDirPath() const;

 private:
  std::string ValueOf(std::string_view attribute) const;

  ODRecord record_;
};

template <>
struct InspectorTypeName<user> {
  static constexpr char const* kName = "user";
};

// All users, in the directory's order, as they were when the iteration was made.
class user_iterator {
 public:
  // `NoSuchObject` when the directory fails.
  user_iterator();

  user First();
  user Next();

 private:
  std::shared_ptr<ODRecordList const> records_;
  ODRecordList::Place place_;
};

// The attributes of one user in the order of their names, each with its first value; one without
// values is empty.
class user_attr_iterator {
 public:
  user_attribute First(user const& user);
  user_attribute Next(user const& user);

 private:
  std::vector<ODAttribute> attributes_;
  std::size_t position_ = 0;
};

// `NoSuchObject` for every failure of the directory.
user named_user(unsigned char const* name, unsigned long length);

inspector_string user_name(user const& user);
inspector_string user_id(user const& user);
inspector_string user_primary_group_id(user const& user);
folder user_home_dir(user const& user);
// The record that the host has of the local user of that name, once it was read.
ActiveDirectoryLocalUser named_ad_user(user const& user);
user_attribute named_attribute(unsigned char const* name, unsigned long length, user const& user);

inspector_string key_of_attribute(user_attribute const& attribute);
inspector_string value_of_attribute(user_attribute const& attribute);
// "key: value"
inspector_string asString(user_attribute const& attribute);
