// What was asked of a machine's volumes, and what it answered.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "machine/capture/volumes.h"
#include "machine/machine.h"

namespace machine::capture {

// Any thread may add to it.
class RecordedVolumes {
 public:
  void KeepVolumes(Fact<SharedVolumes> const& volumes);
  void KeepFacts(Volume const& volume, Fact<VolumeFacts> const& facts);

  // The whole array, or why there is no list.
  Fact<Record> Whole() const;

 private:
  RecordedVolume& At(Volume const& volume);

  mutable std::mutex guard_;
  std::optional<Fact<SharedVolumes>> list_;  // the last one
  std::vector<RecordedVolume> volumes_;
};

// The volumes of `asked`, each answer kept. Both outlive it.
class RecordingVolumes final : public VolumeSource {
 public:
  RecordingVolumes(VolumeSource const& asked, RecordedVolumes& recorded)
      : asked_(asked), recorded_(recorded) {}
  Fact<SharedVolumes> Volumes() const override;
  Fact<VolumeFacts> FactsOf(Volume const& volume) const override;

 private:
  VolumeSource const& asked_;
  RecordedVolumes& recorded_;
};

// Asks all that there is to ask.
void AskVolumes(Machine const& machine);

}  // namespace machine::capture
