// The volumes of a capture: "Volumes", an array of dictionaries. Of those "Name" and "MountPoint"
// must be there; a volume whose facts were asked in vain has the reason in "Absent". A mount that
// was left out of the list and asked all the same is "LeftOut".
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/capture/mac_volume.h"
#include "machine/volumes.h"

namespace machine::capture {

inline constexpr char kVolumes[] = "Volumes";

struct RecordedVolume {
  Volume volume;
  bool is_left_out = false;
  std::optional<Fact<VolumeFacts>> facts;  // nothing where they were not asked
};

Record RecordOf(RecordedVolume const& recorded);

// As they were recorded. Without any there is one volume, which is that of the capture's root: its
// dates are the root folder's, its sizes those that were recorded of that.
class CapturedVolumes final : public VolumeSource {
 public:
  CapturedVolumes(Facts const& facts, FileSource const& files, MacVolume const& mac_volume,
                  bool has_files)
      : facts_(facts), files_(files), mac_volume_(mac_volume), has_files_(has_files) {}
  Fact<SharedVolumes> Volumes() const override;
  Fact<VolumeFacts> FactsOf(Volume const& volume) const override;

 private:
  // A capture does not change, so its list is read once.
  struct List {
    SharedVolumes volumes;
    std::map<std::string, Field> records;  // by mount point, those that were left out too
    std::vector<Absence> malformed;        // why some are on neither
  };

  Fact<List> ReadList() const;
  Fact<List> const& TheList() const;
  Fact<VolumeFacts> FactsOfRoot() const;

  Facts const& facts_;
  FileSource const& files_;
  MacVolume const& mac_volume_;
  bool const has_files_;
  mutable std::once_flag is_read_;
  mutable std::optional<Fact<List>> list_;
};

}  // namespace machine::capture
