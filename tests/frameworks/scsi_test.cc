#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <functional>

#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_scsi.h"

namespace {

class ScsiManager : public OnScriptedMachine {
 protected:
  // Two buses, of which the second is 16 bits wide.
  ScsiManager() {
    auto const scsi = std::make_shared<ScriptedScsi>();
    scsi->buses = {{0, {7, 0x80000002, 0}}, {1, {0, 0, scsiBusWide16}}, {255, {}}};
    scsi->devices = {{{0, 3}, "\x05\x80" + std::string(34, 'd')},
                     {{0, 4}, "\x05"},
                     {{0, 200}, std::string(300, 'l')}};
    machine_->scsi = scsi;
  }
  static SCSIExecIOPB Inquiry(UInt8 bus, UInt8 target, UInt8* data) {
    SCSIExecIOPB block = {};
    block.scsiPBLength = sizeof block;
    block.scsiFunctionCode = SCSIExecIO;
    block.scsiDevice = {0, bus, target, 0};
    block.scsiFlags = 0x60040000;
    block.scsiDataPtr = data;
    block.scsiDataLength = 256;
    block.scsiCDBLength = 6;
    block.scsiCDB = {.cdbBytes = {0x12, 0, 0, 0, 0xFF, 0}};
    return block;
  }
};

TEST_F(ScsiManager, BlocksHaveTheClassicLayout) {
  SCSIBusInquiryPB bus;
  SCSIExecIOPB io;
  auto const offset = [](auto const& block, auto const& member) {
    return reinterpret_cast<char const*>(&member) - reinterpret_cast<char const*>(&block);
  };
  EXPECT_EQ(offset(bus, bus.scsiFunctionCode), 8);
  EXPECT_EQ(offset(bus, bus.scsiDevice.targetID), 14);
  EXPECT_EQ(offset(bus, bus.scsiFlags), 20);
  EXPECT_EQ(offset(bus, bus.scsiFeatureFlags), 48);
  EXPECT_EQ(offset(bus, bus.scsiVersionNumber), 52);
  EXPECT_EQ(offset(bus, bus.scsiHBAInquiry), 53);
  EXPECT_EQ(offset(bus, bus.scsiMaxTarget), 84);
  EXPECT_EQ(offset(bus, bus.scsiAdditionalLength), 170);
  EXPECT_EQ(offset(io, io.scsiDataPtr), 40);
  std::ptrdiff_t const wider = 2 * (sizeof(UInt8*) - 4);
  EXPECT_EQ(offset(io, io.scsiDataLength), 44 + wider / 2);
  EXPECT_EQ(offset(io, io.scsiCDB), 68 + wider);
  EXPECT_EQ(offset(io, io.scsiSelectTimeout), 100 + wider);
  EXPECT_EQ(offset(io, io.scsiPrivates), 156 + wider);
}

TEST_F(ScsiManager, ABusTellsWhatTheMachineDoes) {
  SCSIBusInquiryPB block = {};
  block.scsiPBLength = 172;
  block.scsiFunctionCode = SCSIBusInquiry;
  ASSERT_EQ(SCSIAction(&block), noErr);
  EXPECT_EQ(block.scsiVersionNumber, 7);
  EXPECT_EQ(block.scsiFeatureFlags, 0x80000002);
  EXPECT_EQ(block.scsiHBAInquiry, 0);
  EXPECT_EQ(block.scsiMaxTarget, 255);
  block.scsiDevice.bus = 1;
  ASSERT_EQ(SCSIAction(&block), noErr);
  EXPECT_EQ(block.scsiFeatureFlags, 0);
  EXPECT_EQ(block.scsiHBAInquiry, 0x20);
  EXPECT_EQ(block.scsiMaxTarget, 15);
  for (UInt8 const bus : {2, 254, 255}) {
    block.scsiDevice.bus = bus;
    EXPECT_EQ(SCSIAction(&block), scsiBusInvalid) << int{bus};
    EXPECT_EQ(block.scsiResult, scsiBusInvalid);
  }
  block.scsiDevice.bus = 0;
  for (UInt16 const length : {171, 36, 35, 0}) {
    block.scsiPBLength = length;
    EXPECT_EQ(SCSIAction(&block), scsiPBLengthError) << length;
  }
}

TEST_F(ScsiManager, AnInquiryGivesAsMuchAsThereIsAndIsWanted) {
  struct {
    char const* name;
    UInt8 target, wanted;
    UInt32 room;
    OSErr status;
    std::size_t count;
  } const cases[] = {
      {"36 bytes in 256", 3, 255, 256, scsiDataRunError, 36},
      {"36 bytes in 36", 3, 255, 36, noErr, 36},
      {"no more than there is room for", 3, 255, 5, noErr, 5},
      {"no more than is wanted", 3, 8, 36, scsiDataRunError, 8},
      {"a device of one byte", 4, 255, 256, scsiDataRunError, 1},
      {"a device of many", 200, 255, 256, scsiDataRunError, 255},
      {"no room", 3, 255, 0, noErr, 0},
  };
  for (auto const& row : cases) {
    UInt8 data[257] = {};
    SCSIExecIOPB block = Inquiry(0, row.target, data);
    block.scsiDataLength = row.room;
    block.scsiCDB.cdbBytes[4] = row.wanted;
    EXPECT_EQ(SCSIAction(&block), row.status) << row.name;
    EXPECT_EQ(static_cast<std::size_t>(block.scsiDataResidual), row.room - row.count) << row.name;
    EXPECT_EQ(std::count(data, data + 257, 0), static_cast<long>(257 - row.count)) << row.name;
  }
}

TEST_F(ScsiManager, WhatCannotBeCarriedOutSaysWhy) {
  using Change = std::function<void(SCSIExecIOPB&)>;
  struct {
    char const* name;
    Change change;
    OSErr status;
  } const cases[] = {
      {"short", [](auto& block) { block.scsiPBLength = 275; }, scsiPBLengthError},
      {"function", [](auto& block) { block.scsiFunctionCode = 0; }, scsiFunctionNotAvailable},
      {"function", [](auto& block) { block.scsiFunctionCode = 2; }, scsiFunctionNotAvailable},
      {"bus", [](auto& block) { block.scsiDevice.bus = 2; }, scsiBusInvalid},
      {"no answer", [](auto& block) { block.scsiDevice.targetID = 5; }, scsiSelectTimeout},
      {"no answer",
       [](auto& block) {
         block.scsiDevice = {0, 1, 15, 0};
       },
       scsiSelectTimeout},
      {"range",
       [](auto& block) {
         block.scsiDevice = {0, 1, 16, 0};
       },
       scsiTIDInvalid},
      {"unit", [](auto& block) { block.scsiDevice.LUN = 1; }, scsiLUNInvalid},
      {"command", [](auto& block) { block.scsiCDB.cdbBytes[0] = 0; }, scsiRequestInvalid},
      {"page", [](auto& block) { block.scsiCDB.cdbBytes[1] = 1; }, scsiRequestInvalid},
      {"length", [](auto& block) { block.scsiCDBLength = 10; }, scsiRequestInvalid},
      {"pointer", [](auto& block) { block.scsiFlags |= scsiCDBIsPointer; }, scsiRequestInvalid},
      {"direction", [](auto& block) { block.scsiFlags |= 0x80000000; }, scsiRequestInvalid},
      {"nowhere", [](auto& block) { block.scsiDataPtr = nullptr; }, scsiRequestInvalid},
      {"a list", [](auto& block) { block.scsiSGListCount = 1; }, scsiRequestInvalid},
  };
  for (auto const& row : cases) {
    UInt8 data[256] = {};
    SCSIExecIOPB block = Inquiry(0, 3, data);
    row.change(block);
    EXPECT_EQ(SCSIAction(&block), row.status) << row.name;
    EXPECT_EQ(block.scsiResult, row.status) << row.name;
    EXPECT_EQ(data[0], 0) << row.name;
  }
  machine_->scsi = nullptr;
  UInt8 data[256];
  SCSIExecIOPB block = Inquiry(0, 3, data);
  EXPECT_EQ(SCSIAction(&block), scsiBusInvalid);
}

}  // namespace
