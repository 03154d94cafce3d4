// What the families tell the evaluator beyond their functions.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/recording_evaluator.h"

namespace {

// Those of the inspectors, which are part of this program; the libraries below register too.
std::vector<RecordedRegistration> Own() {
  static int const here = 0;
  Dl_info program, other;
  ::dladdr(&here, &program);
  auto own = RecordingEvaluator::Instance().registered;
  std::erase_if(own, [&](auto const& each) {
    return ::dladdr(each.handle, &other) == 0 || other.dli_fbase != program.dli_fbase;
  });
  return own;
}

// The evaluator may keep such a result, so it must be one that cannot change.
TEST(Registrations, FewDependOnTheirParametersAlone) {
  std::vector<std::string> kept;
  for (RecordedRegistration const& each : Own()) {
    if (each.Text().ends_with(" DOP")) kept.push_back(each.name + " of " + each.object);
  }
  EXPECT_THAT(
      kept,
      testing::UnorderedElementsAre(
          "registry of ", "string of dummy type", "computer of ", "ram of ", "main processor of ",
          "family name of processor", "type of processor", "string of bios", "operating system of ",
          "name of operating system", "version of operating system", "windows of operating system",
          "unix of operating system", "mac of operating system", "string of user attribute",
          "string of security identifier", "6 of security identifier"));
}

TEST(Registrations, PluralsEndInSButForThese) {
  std::map<std::string, std::string> const others = {{"active directory", "active directories"},
                                                     {"alias", "aliases"},
                                                     {"bios", "bioses"},
                                                     {"country", "countries"},
                                                     {"dictionary", "dictionaries"},
                                                     {"entry", "entries"},
                                                     {"global dictionary", "global dictionaries"},
                                                     {"home directory", "home directories"},
                                                     {"iokit registry", "iokit registries"},
                                                     {"isochronous", "isochronouses"},
                                                     {"local dictionary", "local dictionaries"},
                                                     {"process", "processes"},
                                                     {"registry", "registries"},
                                                     {"scsibus", "scsibuses"},
                                                     {"stationery", "stationeries"},
                                                     {"unix", "unixes"},
                                                     {"virtual memory", "virtual memories"},
                                                     {"windows", "windowses"}};
  int count = 0;
  for (RecordedRegistration const& each : Own()) {
    if (!each.call.ends_with("Property")) continue;
    auto const other = others.find(each.name);
    std::string plural = other != others.end() ? other->second : each.name + "s";
    // Two have no plural, and one is spelt so in expressions that exist.
    if (each.name == "dictionary" && each.object == "registryroot") plural = "(null)";
    if (each.name == "user" && !each.parameter.empty()) plural = "(null)";
    if (each.name == "cstring" && each.object == "osxvalue") plural = "csrings";
    EXPECT_EQ(each.plural, plural) << "of " << each.object;
    ++count;
  }
  EXPECT_GT(count, 80);
}

TEST(Registrations, CachesReserveWhatTheEvaluatorNeeds) {
  std::vector<unsigned long> reserved;
  for (RecordedRegistration const& each : Own()) {
    if (each.call == "Cache") reserved.push_back(each.reserved);
  }
  EXPECT_THAT(reserved, testing::ElementsAre(0x40, 0x40, 0x40));
}

TEST(Registrations, EnableableFilesAreFiles) {
  EXPECT_NE(RecordingEvaluator::Instance().Find("Type", "enableable_file", "file"), nullptr);
}

using Set = std::set<std::string>;

// What can be asked of each of the types, and of the world for one of the others, by how it is
// found: plain, "by string", "by integer", "all" or "cast".
std::map<std::string, Set> Found(Set const& types, Set const& of_world) {
  std::map<std::string, Set> found;
  for (RecordedRegistration const& each : Own()) {
    bool const is_of_world = each.object.empty() && of_world.contains(each.result);
    if (each.call == "Type" || !(is_of_world || types.contains(each.object))) continue;
    std::string how = each.call == "Iterated_Property" ? " all" : "";
    if (!each.parameter.empty()) how = " by " + each.parameter;
    if (each.call == "Cast") how = " cast";
    EXPECT_TRUE(found[each.object].insert(each.name + how + ": " + each.result).second);
  }
  return found;
}

TEST(Registrations, OfUsersAndTheirDirectory) {
  std::string const server = "active directory server",
                    computer = "active directory local computer",
                    user = "active directory local user", group = "active directory group",
                    identifier = "security identifier";
  auto found =
      Found({"user", "user attribute", "logged on user", server, computer, user, group, identifier},
            {"user", "logged on user", server});
  EXPECT_EQ(found[""], (Set{"user all: user", "local user all: user", "user by string: user",
                            "logged on user all: logged on user", "current user: logged on user",
                            "active directory: " + server}));
  EXPECT_EQ(found["user"],
            (Set{"name: string", "id: string", "primary group id: string", "home directory: folder",
                 "active directory user: " + user, "attribute by string: user attribute",
                 "attribute all: user attribute"}));
  EXPECT_EQ(found["user attribute"], (Set{"key: string", "value: string", "string cast: string"}));
  EXPECT_EQ(found["logged on user"],
            (Set{"active: boolean", "remote: boolean", "user: user", "session id: string"}));
  EXPECT_EQ(found[server], (Set{"local computer: " + computer, "local user by string: " + user,
                                "local user all: " + user, "logged on user by string: " + user,
                                "logged on user all: " + user}));
  Set const of_record = {"distinguished name: string", "distinguished name error message: string",
                         "sample time: time"};
  auto const with = [&of_record](Set more) {
    more.insert(of_record.begin(), of_record.end());
    return more;
  };
  Set const of_account =
      with({"groups error message: string", "group by string: " + group, "group all: " + group});
  EXPECT_EQ(found[computer], of_account);
  found[computer].insert("name: string");
  EXPECT_EQ(found[user], found[computer]);
  EXPECT_EQ(found[group], with({"name: string", "sid: " + identifier}));
  EXPECT_EQ(found[identifier], (Set{"component string: string", "string cast: string",
                                    "6 by " + identifier + ": boolean"}));
}

}  // namespace
