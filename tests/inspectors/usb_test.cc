#include "inspectors/system/usb.h"

#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using Usb = OnScriptedMachine;

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
  static_assert(sizeof(usb) == 4);
}

TEST_F(Usb, VersionIsAWholePackedOne) {
  EXPECT_THROW(usb_version_of(usb{1}), NoSuchObject);
  machine_->gestalt["usbv"] = 0x12345678u;
  EXPECT_EQ(usb_version_of(usb{1}).major, 12);
  EXPECT_EQ(usb_version_of(usb{1}).non_release_revision, 0x78);
}

}  // namespace
