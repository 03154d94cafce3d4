#include "inspectors/system/usb.h"

#include <gtest/gtest.h>

#include <memory>

#include "evaluator/plugin/exceptions.h"
#include "tests/support/scripted_machine.h"

namespace {

class Usb : public testing::Test {
 protected:
  std::shared_ptr<ScriptedMachine> machine_ = std::make_shared<ScriptedMachine>();
  MachineInUse use_{machine_};
};

TEST_F(Usb, IsThereWhereGestaltSaysSo) {
  EXPECT_THROW(usb_of(), NoSuchObject);
  for (std::uint32_t const attributes : {0u, 2u, 0xFFFFFFFEu}) {
    machine_->gestalt["usb "] = attributes;
    EXPECT_THROW(usb_of(), NoSuchObject) << attributes;
  }
  machine_->gestalt["usb "] = 3u;
  usb const with = usb_of();
  machine_->gestalt["usb "] = 0xFFFFFFFDu;
  EXPECT_TRUE(isoch_of(with));
  EXPECT_FALSE(isoch_of(usb_of()));
}

TEST_F(Usb, VersionIsAWholePackedOne) {
  usb const bus = {1};
  EXPECT_THROW(usb_version_of(bus), NoSuchObject);
  machine_->gestalt["usbv"] = 0x12345678u;
  inspector_version const version = usb_version_of(bus);
  EXPECT_EQ(version.major, 12);
  EXPECT_EQ(version.minor, 3);
  EXPECT_EQ(version.bug_fix, 4);
  EXPECT_EQ(version.stage, 0x56);
  EXPECT_EQ(version.non_release_revision, 0x78);
}

TEST_F(Usb, FollowsFromTheMachinesHardware) {
  machine_->usb_release = 0x0310;
  usb const bus = usb_of();
  EXPECT_TRUE(isoch_of(bus));
  EXPECT_EQ(usb_version_of(bus).major, 3);
  EXPECT_EQ(usb_version_of(bus).minor, 1);
  static_assert(sizeof(usb) == 4);
}

}  // namespace
