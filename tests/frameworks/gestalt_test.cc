#include <CoreServices/CoreServices.h>

#include "tests/frameworks/cf_text.h"
#include "tests/support/big_endian_text.h"
#include "tests/support/on_scripted_machine.h"

namespace {

constexpr SInt64 kUndefined = -1;

class GestaltTest : public OnScriptedMachine {
 protected:
  static SInt64 Ask(std::string const& selector) {
    SInt32 response = 77;
    OSErr const error = Gestalt(BigEndianNumber(selector), &response);
    if (error == noErr) return static_cast<UInt32>(response);
    EXPECT_EQ(error, gestaltUndefSelectorErr);
    EXPECT_EQ(response, 77);
    return kUndefined;
  }
};

TEST_F(GestaltTest, FollowsFromTheMachine) {
  machine_->physical_bytes = (std::uint64_t{2048} << 20) - 1;
  machine_->swap_bytes = 0;
  machine_->architecture = machine::Architecture::kX86;
  machine_->megahertz = 2800;
  machine_->usb_release = 0x0310;
  machine_->online_processors = 3;
  std::pair<char const*, SInt64> const rows[] = {
      {"ramm", 2048}, {"lram", 0x7fffffff}, {"vm  ", 0},
      {"sysa", 10},   {"cput", 0x69787878}, {"cpuf", 0x69787878},
      {"mclk", 2800}, {"usb ", 3},          {"usbv", 0x03108000}};
  for (auto const& [selector, response] : rows) EXPECT_EQ(Ask(selector), response) << selector;
  EXPECT_EQ(MPProcessors(), 3u);
  machine_->swap_bytes = 0x80000000;
  EXPECT_EQ(Ask("lram"), 0xffffffff);
  EXPECT_EQ(Ask("vm  "), 1);
  machine_->swap_bytes = 0x80000001;
  EXPECT_EQ(Ask("lram"), kUndefined);
  machine_->gestalt["ramm"] = 5u;
  EXPECT_EQ(Ask("ramm"), 5);
}

TEST_F(GestaltTest, NamesPowerPCsByTheirVersionRegister) {
  machine_->architecture = machine::Architecture::kPowerPC;
  EXPECT_EQ(Ask("cput"), kUndefined);
  std::pair<std::uint32_t, SInt64> const rows[] = {
      {0x00010001, 0x101}, {0x00082201, 0x108}, {0x000C0209, 0x10C},     {0x80030101, 0x112},
      {0x70000203, 0x120}, {0x003C0300, 0x13C}, {0x004E1202, kUndefined}};
  for (auto const& [version, code] : rows) {
    machine_->power_pc_version = version;
    EXPECT_EQ(Ask("cput"), code) << version;
    EXPECT_EQ(Ask("cpuf"), code) << version;
  }
  EXPECT_EQ(Ask("sysa"), 2);
  machine_->architecture = machine::Architecture::kOther;
  EXPECT_EQ(Ask("sysa"), kUndefined);
  EXPECT_EQ(Ask("cput"), kUndefined);
}

TEST_F(GestaltTest, GivesTextsByTheirResponse) {
  auto const text = [&](std::string const& name) {
    machine_->product_name = name;
    return GestaltResponseString(static_cast<SInt32>(Ask("mnam")));
  };
  unsigned char const* const first = text("PowerEdge");
  EXPECT_STREQ(reinterpret_cast<char const*>(first), "\tPowerEdge");
  unsigned char const* const longest = text(std::string(300, 'x'));
  EXPECT_EQ(longest[0], 255);
  EXPECT_EQ(longest[255], 'x');
  EXPECT_EQ(text("PowerEdge"), first);
  for (SInt32 response : {0, 1, -1, 2048, 0x7fffffff}) {
    EXPECT_EQ(GestaltResponseString(response), nullptr) << response;
  }
}

TEST_F(GestaltTest, MachineNameIsTextWhateverItsBytes) {
  for (char const* name : {"Zoë", "Zo\xeb"}) {
    machine_->computer_name = name;
    EXPECT_EQ(BytesOf(OwnedString(CSCopyMachineName()).get(), kCFStringEncodingUTF8), "Zoë");
  }
}

}  // namespace
