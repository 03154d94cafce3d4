#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "inspectors/users/user.h"
#include "tests/inspectors/scripted_directory.h"
#include "tests/support/recording_evaluator.h"
#include "tests/support/scripted_machine.h"

namespace {

using testing::ElementsAre;

std::string Text(inspector_string const& string) {
  return {reinterpret_cast<char const*>(string.start), string.length};
}

user Named(std::string const& name) {
  return named_user(reinterpret_cast<unsigned char const*>(name.data()), name.size());
}

user_attribute AttributeOf(user const& user, std::string const& name) {
  return named_attribute(reinterpret_cast<unsigned char const*>(name.data()), name.size(), user);
}

class Users : public testing::Test {
 protected:
  ScriptedDirectory directory_;
};

TEST_F(Users, AreThoseOfWhenTheIterationWasMade) {
  directory_.AddUser("b", "501");
  directory_.AddUser("a", "502");
  user_iterator users;
  directory_.AddUser("new", "503");
  EXPECT_EQ(Text(user_name(users.First())), "a");
  EXPECT_EQ(Text(user_name(users.Next())), "b");
  EXPECT_THROW(users.Next(), NoSuchObject);
  EXPECT_EQ(Text(user_name(users.First())), "a");
  auto const* local = RecordingEvaluator::Instance().Find("Iterated_Property", "local user");
  auto const* all = RecordingEvaluator::Instance().Find("Iterated_Property", "user");
  EXPECT_EQ(local->construct, all->construct);
}

TEST_F(Users, EveryFailureOfTheDirectoryIsNoSuchObject) {
  EXPECT_THROW(user_iterator().First(), NoSuchObject);
  directory_.AddUser("a", "501");
  for (std::string const& name : {std::string("A"), std::string(), std::string("a\0", 2)}) {
    EXPECT_THROW(Named(name), NoSuchObject) << name;
  }
  directory_.fails = true;
  EXPECT_THROW(Named("a"), NoSuchObject);
  EXPECT_THROW(user_iterator(), NoSuchObject);
}

TEST_F(Users, HaveTheAttributesOfTheirRecord) {
  directory_.AddUser("a", "0501");
  directory_.users["a"]["dsAttrTypeNative:none"] = {};
  user const found = Named("a");
  EXPECT_EQ(Text(user_name(found)), "a");
  EXPECT_EQ(Text(user_id(found)), "0501");
  EXPECT_THROW(user_primary_group_id(found), NoSuchObject);
  EXPECT_THROW(user_home_dir(found), NoSuchObject);
  user_attribute const id = AttributeOf(found, "dsAttrTypeStandard:UniqueID");
  EXPECT_EQ(Text(asString(id)), "dsAttrTypeStandard:UniqueID: 0501");
  for (std::string const& name : {std::string("UniqueID"), std::string("dsAttrTypeNative:none"),
                                  std::string("dsAttrTypeStandard:UniqueID\0", 28)}) {
    EXPECT_THROW(AttributeOf(found, name), NoSuchObject) << name;
  }

  user_attr_iterator attributes;
  std::vector<std::string> texts{Text(asString(attributes.First(found)))};
  EXPECT_THROW(for (;;) texts.push_back(Text(asString(attributes.Next(found)))), NoSuchObject);
  EXPECT_THAT(texts, ElementsAre("dsAttrTypeNative:none: ", "dsAttrTypeStandard:RecordName: a",
                                 "dsAttrTypeStandard:UniqueID: 0501"));
}

TEST_F(Users, LiveInTheirFolder) {
  MachineInUse const use(machine::MakeLiveMachine());
  directory_.AddUser("a", "501");
  auto& home = directory_.users["a"]["dsAttrTypeStandard:NFSHomeDirectory"];
  home = {"/usr", "/etc"};
  EXPECT_EQ(user_home_dir(Named("a")).Item().Location().POSIXPath(), "/usr");
  home = {"/no/such/folder"};
  EXPECT_THROW(user_home_dir(Named("a")), NoSuchObject);
}

}  // namespace
