// Computer, memory, processors, USB and Gestalt, asked through what they register.
#include "inspectors/system/gestalt.h"

#include "inspectors/system/computer.h"
#include "inspectors/system/processor.h"
#include "inspectors/system/ram.h"
#include "inspectors/system/usb.h"
#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"

namespace {

integer AskGestalt(std::string const& selector) {
  inspector_string const name = Name(selector);
  return Ask<integer>("gestalt", "", nullptr, &name);
}

using SystemInspectors = OnScriptedMachine;

TEST_F(SystemInspectors, AnswerFromGestalt) {
  struct {
    char const* selector;
    std::uint32_t response;
    char const *phrase, *answer;
  } const cases[] = {
      {"ramm", 2048, "physical ram", "2147483648"},
      {"ramm", 0xFFFFFFFF, "physical ram", "4503599626321920"},
      {"lram", 0x80000001, "logical ram", "2147483649"},
      {"mach", 0xFFFFFFFF, "machine type", "4294967295"},
      {"kbd ", 31, "keyboard type", "31"},
      {"sltc", 0x81000000, "nubus map", "2164260864"},
      {"sysa", 1, "powerpc", "false"},
      {"sysa", 2, "powerpc", "true"},
      {"sysa", 3, "powerpc", "false"},
      {"sysa", 10, "powerpc", "false"},
      {"vm  ", 0, "virtual memory", "false"},
      {"vm  ", 1, "virtual memory", "true"},
      {"vm  ", 2, "virtual memory", "false"},
      {"vm  ", 0x80000001, "virtual memory", "true"},
      {"qd  ", 0x0230, "quickdraw version", "2 3 0 0 0"},
      {"romv", 0xFFFF077D, "rom version", "7 7 13 0 0"},
      {"nreg", 0x12345678, "name registry version", "12 3 4 86 120"},
      {"mclk", 2400, "cpu speed", "2400000000"},
      {"mclk", 0xFFFFFFFF, "cpu speed", "4294967295000000"},
  };
  for (auto const& row : cases) {
    machine_->gestalt = {};
    EXPECT_EQ(Answer(row.phrase), kNone) << row.phrase;
    machine_->gestalt[row.selector] = row.response;
    EXPECT_EQ(Answer(row.phrase), row.answer) << row.phrase;
  }
  machine_->gestalt["ramm"] = 3u;
  EXPECT_EQ(Answer("size", "ram"), "3145728");
  EXPECT_EQ(Ask<hertz>("speed", "processor").count, 4294967295000000);
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
    EXPECT_EQ(Answer("type", "processor"), name);
    EXPECT_EQ(Answer("family name", "processor"), "unknown");
  }
  machine_->gestalt = {{"cpuf", 0x103u}};
  EXPECT_EQ(Answer("family name", "processor"), "PowerPC 603");
  EXPECT_EQ(Answer("type", "processor"), "error -5551") << "an undefined selector";
}

TEST_F(SystemInspectors, ThereAreAsManyProcessorsAsAreOnline) {
  ProcessorIterator processors;
  for (std::uint32_t const online : {0u, 1u, 2u, 2u}) {
    machine_->online_processors = online;
    EXPECT_EQ(All(processors, [](auto const&) { return 0; }).size(), online);
  }
}

TEST_F(SystemInspectors, NamesOfTheMachine) {
  struct {
    char const *phrase, *object, *answer;
  } const cases[] = {{"hostname", "", "studio.example"},
                     {"dns name", "", "studio.example"},
                     {"name", "computer", "Studio caf\xE9 ?"},
                     {"machine name", "", "PowerMac3,6"}};
  for (auto const& row : cases) EXPECT_EQ(Answer(row.phrase, row.object), kNone) << row.phrase;
  machine_->host_name = "studio.example";
  machine_->computer_name = "Studio caf\u00E9 \u4E2D";
  machine_->product_name = "PowerMac3,6";
  for (auto const& row : cases) EXPECT_EQ(Answer(row.phrase, row.object), row.answer) << row.phrase;
  auto const name = Ask<inspector_string>("hostname");
  EXPECT_EQ(name.start[name.length], 0);
  machine_->host_name = std::string(1023, 'x');
  EXPECT_EQ(Answer("hostname"), kNone);
}

TEST_F(SystemInspectors, UsbIsThereWhereGestaltSaysSo) {
  EXPECT_THROW(usb_of(), NoSuchObject);
  for (std::uint32_t const attributes : {0u, 2u, 0xFFFFFFFEu}) {
    machine_->gestalt["usb "] = attributes;
    EXPECT_THROW(usb_of(), NoSuchObject) << attributes;
  }
  machine_->gestalt["usb "] = 3u;
  auto const with = Ask<usb>("usb");
  machine_->gestalt = {{"usb ", 0xFFFFFFFDu}, {"usbv", 0x12345678u}};
  auto const without = Ask<usb>("usb");
  EXPECT_EQ(Answers({"isochronous", "version"}, "usb", &with), "true, 12 3 4 86 120");
  EXPECT_EQ(Answer("isochronous", "usb", &without), "false");
  machine_->gestalt = {};
  EXPECT_EQ(Answer("version", "usb", &with), kNone);
  static_assert(sizeof(usb) == 4);
}

}  // namespace
