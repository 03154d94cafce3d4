// Computer, memory, processors and Gestalt, asked through what they register.
#include "inspectors/system/gestalt.h"

#include "inspectors/system/computer.h"
#include "inspectors/system/processor.h"
#include "inspectors/system/ram.h"
#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"

namespace {

// Every object of these families is empty.
std::string AskText(std::string const& phrase, std::string const& type = "") {
  return Shown(Ask<inspector_string>(phrase, type));
}

integer AskGestalt(std::string const& selector) {
  inspector_string const name = Name(selector);
  return Ask<integer>("gestalt", "", nullptr, &name);
}

using SystemInspectors = OnScriptedMachine;

TEST_F(SystemInspectors, NumbersOfGestalt) {
  struct {
    char const* selector;
    std::uint32_t response;
    char const* phrase;
    integer answer;
  } const cases[] = {
      {"ramm", 2048, "physical ram", 2147483648},
      {"ramm", 0xFFFFFFFF, "physical ram", 0xFFFFFFFF00000},
      {"lram", 0x80000001, "logical ram", 2147483649},
      {"mach", 0xFFFFFFFF, "machine type", 4294967295},
      {"kbd ", 31, "keyboard type", 31},
      {"sltc", 0x81000000, "nubus map", 0x81000000},
      {"mclk", 2400, "cpu speed", 2400000000},
      {"mclk", 0xFFFFFFFF, "cpu speed", 4294967295000000},
  };
  for (auto const& row : cases) {
    machine_->gestalt = {};
    EXPECT_THROW(Ask<integer>(row.phrase), NoSuchObject) << row.phrase;
    machine_->gestalt[row.selector] = row.response;
    EXPECT_EQ(Ask<integer>(row.phrase), row.answer) << row.phrase;
  }
  machine_->gestalt["ramm"] = 3u;
  EXPECT_EQ(Ask<integer>("size", "ram"), 3 << 20);
  EXPECT_EQ(Ask<hertz>("speed", "processor").count, 4294967295000000);
}

TEST_F(SystemInspectors, FlagsOfGestalt) {
  for (std::uint32_t const architecture : {1u, 2u, 3u, 10u}) {
    machine_->gestalt["sysa"] = architecture;
    EXPECT_EQ(Ask<boolean>("powerpc"), architecture == 2);
  }
  for (std::uint32_t const attributes : {0u, 1u, 2u, 0x80000001u}) {
    machine_->gestalt["vm  "] = attributes;
    EXPECT_EQ(Ask<boolean>("virtual memory"), (attributes & 1) != 0);
  }
}

TEST_F(SystemInspectors, VersionsOfGestalt) {
  machine_->gestalt = {{"qd  ", 0x0230u}, {"romv", 0xFFFF077Du}, {"nreg", 0x12345678u}};
  auto const fields = [](char const* phrase) {
    inspector_version const version = Ask<inspector_version>(phrase);
    return std::vector<int>{version.major, version.minor, version.bug_fix, version.stage,
                            version.non_release_revision};
  };
  EXPECT_THAT(fields("quickdraw version"), testing::ElementsAre(2, 3, 0, 0, 0));
  EXPECT_THAT(fields("rom version"), testing::ElementsAre(7, 7, 13, 0, 0));
  EXPECT_THAT(fields("name registry version"), testing::ElementsAre(12, 3, 4, 0x56, 0x78));
}

TEST_F(SystemInspectors, GestaltItselfExtendsTheSign) {
  machine_->gestalt = {{"abcd", 0xFFFFFFFEu}, {"ab\xFF\x01", 5u}};
  EXPECT_EQ(AskGestalt("abcd"), -2);
  EXPECT_EQ(AskGestalt("ab\xFF\x01"), 5);
  EXPECT_THROW(AskGestalt("none"), NoSuchObject);

  int const asked = machine_->calls().gestalt;
  for (char const* selector : {"", "abc", "abcde"}) {
    EXPECT_THROW(AskGestalt(selector), NoSuchObject) << selector;
  }
  EXPECT_EQ(machine_->calls().gestalt, asked);
}

TEST_F(SystemInspectors, ProcessorNames) {
  std::pair<std::uint32_t, char const*> const cases[] = {
      {0x101, "PowerPC 601"}, {0x10B, "unknown"},      {0x10C, "PowerPC G4 7440"},
      {0x69343836, "i486"},   {0x69356969, "i5ii"},    {0x69787878, "ixxx"},
      {0, "unknown"},         {0xFFFFFFFF, "unknown"},
  };
  for (auto const& [response, name] : cases) {
    machine_->gestalt = {{"cput", response}, {"cpuf", 0u}};
    EXPECT_EQ(AskText("type", "processor"), name);
    EXPECT_EQ(AskText("family name", "processor"), "unknown");
  }
  machine_->gestalt = {{"cpuf", 0x103u}};
  EXPECT_EQ(AskText("family name", "processor"), "PowerPC 603");
  try {
    Ask<inspector_string>("type", "processor");
    ADD_FAILURE() << "an undefined selector has an answer";
  } catch (OSError const& error) {
    EXPECT_EQ(error.Code(), -5551);
  }
}

TEST_F(SystemInspectors, ThereAreAsManyProcessorsAsAreOnline) {
  ProcessorIterator processors;
  for (std::uint32_t const online : {0u, 1u, 2u, 2u}) {
    machine_->online_processors = online;
    for (std::uint32_t at = 0; at < online; ++at) {
      EXPECT_NO_THROW(at == 0 ? processors.First() : processors.Next());
    }
    EXPECT_THROW(online == 0 ? processors.First() : processors.Next(), NoSuchObject);
  }
}

TEST_F(SystemInspectors, NamesOfTheMachine) {
  for (auto const& [phrase, object] :
       {std::pair("hostname", ""), std::pair("dns name", ""), std::pair("name", "computer"),
        std::pair("machine name", "")}) {
    EXPECT_THROW(Ask<inspector_string>(phrase, object), NoSuchObject) << phrase;
  }
  machine_->host_name = "studio.example";
  machine_->computer_name = "Studio caf\u00E9 \u4E2D";
  machine_->product_name = "PowerMac3,6";
  for (char const* phrase : {"hostname", "dns name"}) {
    inspector_string const name = Ask<inspector_string>(phrase);
    EXPECT_EQ(Shown(name), "studio.example");
    EXPECT_EQ(name.start[name.length], 0);
  }
  EXPECT_EQ(AskText("name", "computer"), "Studio caf\xE9 ?");
  EXPECT_EQ(AskText("machine name"), "PowerMac3,6");
  machine_->host_name = std::string(1023, 'x');
  EXPECT_THROW(Ask<inspector_string>("hostname"), NoSuchObject);
}

}  // namespace
