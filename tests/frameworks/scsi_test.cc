#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <cstddef>

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
  SCSIBusInquiryPB const bus = {};
  SCSIExecIOPB const io = {};
  auto const offset = [](auto const& block, auto const& member) {
    return reinterpret_cast<char const*>(&member) - reinterpret_cast<char const*>(&block);
  };
  std::ptrdiff_t const wider = 2 * (sizeof(UInt8*) - 4);
  std::pair<std::ptrdiff_t, std::ptrdiff_t> const offsets[] = {
      {offset(bus, bus.scsiFunctionCode), 8},    {offset(bus, bus.scsiDevice.targetID), 14},
      {offset(bus, bus.scsiFlags), 20},          {offset(bus, bus.scsiFeatureFlags), 48},
      {offset(bus, bus.scsiVersionNumber), 52},  {offset(bus, bus.scsiHBAInquiry), 53},
      {offset(bus, bus.scsiMaxTarget), 84},      {offset(bus, bus.scsiAdditionalLength), 170},
      {offset(io, io.scsiDataPtr), 40},          {offset(io, io.scsiDataLength), 44 + wider / 2},
      {offset(io, io.scsiCDB), 68 + wider},      {offset(io, io.scsiSelectTimeout), 100 + wider},
      {offset(io, io.scsiPrivates), 156 + wider}};
  for (auto const& [found, classic] : offsets) EXPECT_EQ(found, classic);
}

TEST_F(ScsiManager, ABusTellsWhatTheMachineDoes) {
  SCSIBusInquiryPB block = {};
  block.scsiPBLength = 172;
  block.scsiFunctionCode = SCSIBusInquiry;
  auto const told = [&block](UInt8 bus) {
    block.scsiDevice.bus = bus;
    EXPECT_EQ(SCSIAction(&block), noErr);
    return std::vector<UInt32>{block.scsiVersionNumber, block.scsiFeatureFlags,
                               block.scsiHBAInquiry, block.scsiMaxTarget};
  };
  EXPECT_THAT(told(0), testing::ElementsAre(7, 0x80000002, 0, 255));
  EXPECT_THAT(told(1), testing::ElementsAre(0, 0, 0x20, 15));
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
  // The target, how much is wanted and the room for it.
  std::tuple<char const*, UInt8, UInt8, UInt32, OSErr, UInt32> const cases[] = {
      {"36 bytes in 256", 3, 255, 256, scsiDataRunError, 36},
      {"36 bytes in 36", 3, 255, 36, noErr, 36},
      {"no more than there is room for", 3, 255, 5, noErr, 5},
      {"no more than is wanted", 3, 8, 36, scsiDataRunError, 8},
      {"a device of one byte", 4, 255, 256, scsiDataRunError, 1},
      {"a device of many", 200, 255, 256, scsiDataRunError, 255},
      {"no room", 3, 255, 0, noErr, 0},
  };
  for (auto const& [name, target, wanted, room, status, count] : cases) {
    UInt8 data[257] = {};
    SCSIExecIOPB block = Inquiry(0, target, data);
    block.scsiDataLength = room;
    block.scsiCDB.cdbBytes[4] = wanted;
    EXPECT_EQ(SCSIAction(&block), status) << name;
    EXPECT_EQ(static_cast<UInt32>(block.scsiDataResidual), room - count) << name;
    EXPECT_EQ(std::count(data, data + 257, 0), 257 - count) << name;
  }
}

TEST_F(ScsiManager, WhatCannotBeCarriedOutSaysWhy) {
  using Block = SCSIExecIOPB;
  std::tuple<char const*, void (*)(Block&), OSErr> const cases[] = {
      {"short", [](Block& it) { it.scsiPBLength = 275; }, scsiPBLengthError},
      {"function", [](Block& it) { it.scsiFunctionCode = 0; }, scsiFunctionNotAvailable},
      {"function", [](Block& it) { it.scsiFunctionCode = 2; }, scsiFunctionNotAvailable},
      {"bus", [](Block& it) { it.scsiDevice.bus = 2; }, scsiBusInvalid},
      {"no answer", [](Block& it) { it.scsiDevice.targetID = 5; }, scsiSelectTimeout},
      {"widest",
       [](Block& it) {
         it.scsiDevice = DeviceIdent{0, 1, 15, 0};
       },
       scsiSelectTimeout},
      {"range",
       [](Block& it) {
         it.scsiDevice = DeviceIdent{0, 1, 16, 0};
       },
       scsiTIDInvalid},
      {"unit", [](Block& it) { it.scsiDevice.LUN = 1; }, scsiLUNInvalid},
      {"command", [](Block& it) { it.scsiCDB.cdbBytes[0] = 0; }, scsiRequestInvalid},
      {"page", [](Block& it) { it.scsiCDB.cdbBytes[1] = 1; }, scsiRequestInvalid},
      {"length", [](Block& it) { it.scsiCDBLength = 10; }, scsiRequestInvalid},
      {"pointer", [](Block& it) { it.scsiFlags |= scsiCDBIsPointer; }, scsiRequestInvalid},
      {"direction", [](Block& it) { it.scsiFlags |= 0x80000000; }, scsiRequestInvalid},
      {"nowhere", [](Block& it) { it.scsiDataPtr = nullptr; }, scsiRequestInvalid},
      {"a list", [](Block& it) { it.scsiSGListCount = 1; }, scsiRequestInvalid},
  };
  UInt8 data[256] = {};
  for (auto const& [name, change, status] : cases) {
    SCSIExecIOPB block = Inquiry(0, 3, data);
    change(block);
    EXPECT_EQ(SCSIAction(&block), status) << name;
    EXPECT_EQ(block.scsiResult, status) << name;
    EXPECT_EQ(data[0], 0) << name;
  }
  machine_->scsi = nullptr;
  SCSIExecIOPB block = Inquiry(0, 3, data);
  EXPECT_EQ(SCSIAction(&block), scsiBusInvalid);
}

}  // namespace
