// Volumes that a test scripts: each with its facts or the reason why there are none.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "machine/volumes.h"

class ScriptedVolumes final : public machine::VolumeSource {
 public:
  void Add(machine::Volume volume, machine::Fact<machine::VolumeFacts> told) {
    facts.insert_or_assign(volume.mount_point, std::move(told));
    volumes.push_back(std::move(volume));
  }
  machine::Fact<machine::SharedVolumes> Volumes() const override {
    return std::make_shared<std::vector<machine::Volume> const>(volumes);
  }
  machine::Fact<machine::VolumeFacts> FactsOf(machine::Volume const& volume) const override {
    auto const found = facts.find(volume.mount_point);
    if (found == facts.end()) return machine::Absence{machine::Outcome::kAbsent, "script", {}, 0};
    return found->second;
  }

  std::vector<machine::Volume> volumes;
  std::map<std::string, machine::Fact<machine::VolumeFacts>> facts;
};
