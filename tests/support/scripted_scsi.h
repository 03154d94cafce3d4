// SCSI buses and their devices that a test scripts. They note what the devices are asked.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "machine/scsi.h"

class ScriptedScsi final : public machine::ScsiSource {
 public:
  machine::Fact<machine::ScsiBus> Bus(std::uint8_t bus) const override {
    if (auto const found = buses.find(bus); found != buses.end()) return found->second;
    return machine::Absence{};
  }
  machine::Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const override {
    asked.push_back(bus * 100 + target);
    if (auto const found = devices.find({bus, target}); found != devices.end()) {
      return found->second;
    }
    return machine::Absence{};
  }

  std::map<std::uint8_t, machine::ScsiBus> buses = {{0, {}}};
  std::map<std::pair<std::uint8_t, std::uint8_t>, std::string> devices;
  mutable std::vector<int> asked;  // bus by the hundred, target by one
};
