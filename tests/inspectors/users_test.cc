#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "inspectors/users/user.h"
#include "tests/inspectors/asking.h"
#include "tests/support/recording_evaluator.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using testing::ElementsAre;

user Named(std::string const& name) { return named_user(Bytes(name), name.size()); }

user_attribute AttributeOf(user const& user, std::string const& name) {
  return named_attribute(Bytes(name), name.size(), user);
}

constexpr char kID[] = "dsAttrTypeStandard:UniqueID";

class Users : public testing::Test {
 protected:
  Users() { machine_->directory = directory_; }

  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse use_{machine_};
  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
};

TEST_F(Users, AreThoseOfWhenTheIterationWasMade) {
  directory_->Add("b", {});
  directory_->Add("a", {});
  user_iterator users;
  directory_->Add("new", {});
  EXPECT_EQ(Shown(user_name(users.First())), "b");
  EXPECT_EQ(Shown(user_name(users.Next())), "a");
  EXPECT_THROW(users.Next(), NoSuchObject);
  EXPECT_EQ(Shown(user_name(users.First())), "b");
  auto const* local = RecordingEvaluator::Instance().Find("Iterated_Property", "local user");
  auto const* all = RecordingEvaluator::Instance().Find("Iterated_Property", "user");
  EXPECT_EQ(local->construct, all->construct);
}

TEST_F(Users, EveryFailureOfTheDirectoryIsNoSuchObject) {
  EXPECT_THROW(user_iterator().First(), NoSuchObject);
  directory_->Add("a", {});
  for (std::string const& name : {std::string("b"), std::string(), std::string("a\0", 2)}) {
    EXPECT_THROW(Named(name), NoSuchObject) << name;
  }
  directory_->failure = machine::Outcome::kTimedOut;
  EXPECT_THROW(Named("a"), NoSuchObject);
  EXPECT_THROW(user_iterator(), NoSuchObject);
}

TEST_F(Users, HaveTheAttributesOfTheirRecord) {
  directory_->Add(kUsersRecordType, "a", {{kID, {"0501", "502"}}, {"dsAttrTypeNative:none", {}}});
  user const found = Named("a");
  EXPECT_EQ(Shown(user_name(found)), "a");
  EXPECT_EQ(Shown(user_id(found)), "0501");
  EXPECT_THROW(user_primary_group_id(found), NoSuchObject);
  EXPECT_THROW(user_home_dir(found), NoSuchObject);
  EXPECT_EQ(Shown(asString(AttributeOf(found, kID))), "dsAttrTypeStandard:UniqueID: 0501");
  for (std::string const& name : {std::string("UniqueID"), std::string("dsAttrTypeNative:none"),
                                  std::string("dsAttrTypeStandard:UniqueID\0", 28)}) {
    EXPECT_THROW(AttributeOf(found, name), NoSuchObject) << name;
  }

  user_attr_iterator attributes;
  std::vector<std::string> texts{Shown(asString(attributes.First(found)))};
  EXPECT_THROW(for (;;) texts.push_back(Shown(asString(attributes.Next(found)))), NoSuchObject);
  EXPECT_THAT(texts, ElementsAre("dsAttrTypeNative:none: ", "dsAttrTypeStandard:RecordName: a",
                                 "dsAttrTypeStandard:UniqueID: 0501"));
}

TEST_F(Users, LiveInTheirFolder) {
  auto const live = machine::MakeLiveMachine();
  machine_->files = {live, &live->Files()};
  char const home[] = "dsAttrTypeStandard:NFSHomeDirectory";
  directory_->Add(kUsersRecordType, "a", {{home, {"/usr", "/etc"}}});
  directory_->Add(kUsersRecordType, "b", {{home, {"/no/such/folder"}}});
  EXPECT_EQ(user_home_dir(Named("a")).Item().Location().POSIXPath(), "/usr");
  EXPECT_THROW(user_home_dir(Named("b")), NoSuchObject);
}

}  // namespace
