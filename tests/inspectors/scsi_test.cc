// SCSI buses and devices, on a machine that counts what its devices are asked.
#include <map>
#include <utility>

#include "inspectors/system/scsi_bus.h"
#include "inspectors/system/scsi_device.h"
#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_scsi.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Vendor, product, revision and type.
std::string Describe(scsiDevice const& device) {
  return Answers({"vendor", "product", "revision", "type"}, "scsidevice", &device);
}

class Scsi : public OnScriptedMachine {
 protected:
  Scsi() { machine_->scsi = source_; }
  ~Scsi() override { Clear(); }

  static void Clear() {
    Instant now;
    ClearscsiDevCache(now, nullptr);
  }

  void AddDevices(std::uint8_t bus, std::uint8_t count) {
    for (std::uint8_t target = 0; target < count; ++target) {
      source_->devices[{bus, target}] = std::string(36, static_cast<char>('a' + target));
    }
  }

  // Bus and target of each element, as the machine counts what is asked.
  static int PlaceOf(scsiDevice const& device) {
    return static_cast<int>(device.bus * 100 + device.target);
  }
  std::vector<int> Asked() { return std::exchange(source_->asked, {}); }

  std::shared_ptr<ScriptedScsi> source_ = std::make_shared<ScriptedScsi>();
};

TEST_F(Scsi, DevicesTellWhatTheyAreAsTheySentIt) {
  source_->devices[{0, 3}] =
      std::string("\5\x80\2\2\x1f\0\0\0", 8) + "QUANTUM " + "FIREBALL ST4.3S " + "0F0C" + "more";
  integer const number = 3;
  EXPECT_EQ(Describe(Ask<scsiDevice>("scsidevice", "", nullptr, &number)),
            "QUANTUM , FIREBALL ST4.3S , 0F0C, CDROM");
  source_->devices[{0, 4}] = std::string("\1\0\0\0\0\0\0\0", 8) + "SHORT";
  EXPECT_EQ(Describe(scsiDevice(4)), std::string("SHORT\0\0\0, ", 10) + std::string(16, '\0') +
                                         std::string(", \0\0\0\0, TAPE", 12));
  EXPECT_THROW(scsi_device_of(5), NoSuchObject);
}

TEST_F(Scsi, TypesAreNamed) {
  std::map<unsigned, std::string> const names = {
      {0, "DISK"}, {1, "TAPE"}, {2, "PRINTER"}, {3, "CPU"},        {4, "WORM"},    {5, "CDROM"},
      {6, "SCAN"}, {7, "DISK"}, {8, "UNKNOWN"}, {0x1F, "UNKNOWN"}, {0x20, "DISK"}, {0xE7, "DISK"}};
  scsiDevice device;
  for (auto const& [byte, name] : names) {
    device.inquiry[0] = static_cast<unsigned char>(byte);
    EXPECT_EQ(Shown(type_of(device)), name) << byte;
  }
}

TEST_F(Scsi, BusesTellVersionSpeedAndWidth) {
  std::pair<machine::ScsiBus, char const*> const cases[] = {
      {{255, 0xFFFFFFFD, 0x9F}, "255 0 0 0 0, false, false, false"},
      {{0, 2, 0}, "0 0 0 0 0, true, false, false"},
      {{4, 0, 0x20}, "4 0 0 0 0, false, true, false"},
      {{4, 0, 0x40}, "4 0 0 0 0, false, false, true"}};
  integer const number = 9;
  for (auto const& [told, answers] : cases) {
    source_->buses[9] = told;
    auto const bus = Ask<scsibus>("scsibus", "", nullptr, &number);
    EXPECT_EQ(Answers({"version", "fast scsi", "wide16 scsi", "wide32 scsi"}, "scsibus", &bus),
              answers);
  }
  EXPECT_EQ(scsi_bus_of(256 + 9).Number(), 9);
  EXPECT_THROW(scsi_bus_of(1), NoSuchObject);
}

TEST_F(Scsi, TheEightAskedLastAreRemembered) {
  AddDevices(0, 10);
  auto const ask = [](std::initializer_list<unsigned> targets) {
    for (unsigned const target : targets) scsi_device_of(target);
  };
  ask({0, 1, 2, 3, 4, 5, 6, 7, 0, 7});
  EXPECT_THAT(Asked(), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
  EXPECT_THROW(scsi_device_of(200), NoSuchObject);
  EXPECT_THAT(Asked(), ElementsAre(200));
  ask({8, 1, 8, 0, 2, 1});  // the ninth takes the place of the first, the tenth of the second
  EXPECT_THAT(Asked(), ElementsAre(8, 0, 1));
  EXPECT_THROW(scsi_device_of(200), NoSuchObject);
  Asked();
  Clear();
  ask({3, 3, 9, 3});
  EXPECT_THAT(Asked(), ElementsAre(3, 9));
}

TEST_F(Scsi, WhatIsRememberedStandsUntilItIsCleared) {
  AddDevices(0, 1);
  EXPECT_EQ(Shown(revision_of(scsi_device_of(0))), "aaaa");
  source_->devices[{0, 0}] = std::string(36, 'x');
  EXPECT_EQ(Shown(revision_of(scsi_device_of(0))), "aaaa");
  EXPECT_EQ(Shown(revision_of(scsiDevice(0))), "xxxx");
  Clear();
  EXPECT_EQ(Shown(revision_of(scsi_device_of(0))), "xxxx");
  source_->devices.clear();
  Clear();
  EXPECT_THROW(scsi_device_of(0), NoSuchObject);
}

TEST_F(Scsi, TheCacheGoesByWholeNumbersTheManagerByTheirLowBytes) {
  AddDevices(0, 2);
  for (int i = 0; i < 2; ++i) {
    for (auto const& [bus, target] : {std::pair(0ull, 1ull), {256ull, 1ull}, {0ull, 257ull}}) {
      scsiDevice const device = get_scsi_device(bus, target);
      EXPECT_EQ(device.bus, bus);
      EXPECT_EQ(device.target, target);
      EXPECT_EQ(Shown(revision_of(device)), "bbbb");
    }
  }
  EXPECT_THAT(Asked(), ElementsAre(1, 1, 1));
  EXPECT_EQ(scsi_device_of(1, scsi_bus_of(256)).bus, 0u);
  EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(Scsi, DevicesOfABusAreEightAtMostUpToTheFirstGap) {
  source_->buses[2] = {};
  AddDevices(2, 10);
  scsibus const bus(2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(All(SCSIDeviceIterator1(), PlaceOf, bus),
                ElementsAre(200, 201, 202, 203, 204, 205, 206, 207));
    EXPECT_EQ(Asked().size(), 8u) << "iterations ask each time";
  }
  source_->devices.erase({2, 3});
  EXPECT_THAT(All(SCSIDeviceIterator1(), PlaceOf, bus), ElementsAre(200, 201, 202));
  EXPECT_THAT(Asked(), ElementsAre(200, 201, 202, 203));
}

TEST_F(Scsi, DevicesOfTheWorldAreThoseOfOneBusAfterTheOther) {
  struct {
    char const* name;
    std::vector<std::uint8_t> counts;  // of devices, by bus
    std::vector<int> found;
  } const cases[] = {
      {"no bus", {}, {}},
      {"an empty bus", {0}, {}},
      {"a gap ends it all", {2, 8}, {0, 1}},
      {"two buses", {8, 2}, {0, 1, 2, 3, 4, 5, 6, 7, 100, 101}},
      {"the last bus", {9}, {0, 1, 2, 3, 4, 5, 6, 7}},
  };
  for (auto const& row : cases) {
    source_->buses.clear();
    source_->devices.clear();
    for (std::uint8_t bus = 0; bus < row.counts.size(); ++bus) {
      source_->buses[bus] = {};
      AddDevices(bus, row.counts[bus]);
    }
    EXPECT_EQ(All(SCSIDeviceIterator2(), PlaceOf), row.found) << row.name;
  }
  source_->buses = {{1, {}}};
  Asked();
  EXPECT_THAT(All(SCSIDeviceIterator2(), PlaceOf), IsEmpty());
  EXPECT_THAT(Asked(), IsEmpty());
}

// However many a machine claims to have, so that a number never comes round again.
TEST_F(Scsi, BusesEnd) {
  for (unsigned const last : {0u, 1u, 255u}) {
    for (unsigned bus = 0; bus <= last; ++bus) source_->buses[static_cast<std::uint8_t>(bus)] = {};
    auto const numbers = All(SCSIBusIterator(), [](scsibus const& bus) { return bus.Number(); });
    EXPECT_EQ(numbers.size(), last == 255 ? 255 : last + 1);
    EXPECT_EQ(numbers.back(), numbers.size() - 1);
  }
  machine_->scsi = nullptr;
  EXPECT_THROW(SCSIBusIterator().First(), NoSuchObject);
}

TEST_F(Scsi, HasThreeIterations) {
  for (auto const& [name, object] : {std::pair("scsibus", ""), std::pair("scsidevice", ""),
                                     std::pair("scsidevice", "scsibus")}) {
    EXPECT_NE(RecordingEvaluator::Instance().Find("Iterated_Property", name, object), nullptr);
  }
  static_assert(sizeof(scsibus) == 172 && sizeof(scsiDevice) == 272);
}

}  // namespace
