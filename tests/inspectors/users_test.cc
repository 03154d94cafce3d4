// Users, asked of the evaluator itself.
#include "inspectors/users/user.h"
#include "tests/portable_inspectors/answers.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

constexpr char kNone[] = "no such object";

class Users : public OnScriptedMachine {
 protected:
  Users() { machine_->directory = directory_; }

  std::shared_ptr<ScriptedRecords> directory_ = std::make_shared<ScriptedRecords>();
};

TEST_F(Users, AreThoseOfWhenTheIterationWasMade) {
  directory_->Add("b", {});
  directory_->Add("a", {});
  user_iterator users;
  directory_->Add("new", {});
  EXPECT_EQ(users.First().Name(), "b");
  EXPECT_EQ(users.Next().Name(), "a");
  EXPECT_THROW(users.Next(), NoSuchObject);
  EXPECT_EQ(users.First().Name(), "b");
}

TEST_F(Users, HaveTheAttributesOfTheirRecord) {
  EXPECT_EQ(Answer("number of users"), "0");
  directory_->Add("b", {});
  directory_->Add(
      kUsersRecordType, "a",
      {{"dsAttrTypeStandard:UniqueID", {"0501", "502"}}, {"dsAttrTypeNative:none", {}}});
  std::pair<std::string, char const*> const cases[] = {
      {"names of users", "b\na"},
      {"names of local users", "b\na"},
      {"(name of it, id of it) of user \"a\"", "a, 0501"},
      {"primary group id of user \"a\"", kNone},
      {"home directory of user \"a\"", kNone},
      {"exists user \"c\"", "false"},
      {"exists user \"\"", "false"},
      {"exists user \"a\\x00\"", "false"},
      {"attributes of user \"a\"",
       "dsAttrTypeNative:none: \ndsAttrTypeStandard:RecordName: a\n"
       "dsAttrTypeStandard:UniqueID: 0501"},
      {"(key of it, value of it) of attribute \"dsAttrTypeStandard:UniqueID\" of user \"a\"",
       "dsAttrTypeStandard:UniqueID, 0501"},
      {"attribute \"UniqueID\" of user \"a\"", kNone},
      {"attribute \"dsAttrTypeNative:none\" of user \"a\"", kNone},
      {"attribute \"dsAttrTypeStandard:UniqueID\\x00\" of user \"a\"", kNone},
  };
  for (auto const& [question, answer] : cases) EXPECT_EQ(Answer(question), answer) << question;
  directory_->failure = machine::Outcome::kTimedOut;
  EXPECT_EQ(Answer("exists user \"a\""), "false");
  EXPECT_THROW(user_iterator(), NoSuchObject);
}

}  // namespace
