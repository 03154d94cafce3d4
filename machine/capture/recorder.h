// Records what a machine is asked and what it answers, to be laid down as a capture.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/capture/record.h"
#include "machine/files.h"
#include "machine/machine.h"

namespace machine {

struct RecordingLimits {
  // Of the contents of all files together. What does not fit is absent from the capture, "not
  // recorded: larger than ...".
  std::uint64_t content_bytes = std::uint64_t{64} << 20;
  // Of the content of each file that is taken along.
  std::uint64_t file_bytes = UINT64_MAX;
  // Whether of large files that were not read to their end only what was read is kept.
  bool has_parts = true;
  // Of the items looked at. What does not fit is "not recorded", and so is what a folder holds when
  // some of it does not.
  std::uint64_t items = 100'000;
  // Of the registry, all planes together. What is more is absent, with this reason.
  std::uint64_t registry_entries = 250'000, registry_bytes = std::uint64_t{64} << 20;
};

// The names of people and machines and the numbers of devices may be replaced. Files that are no
// text are left out then.
enum class Redacting { kNothing, kNames };

// What came of taking files along.
struct TakingReport {
  std::vector<std::string> too_large;
  std::vector<std::string> not_redacted;
  std::vector<Absence> refused;      // what could not be read, by `source`
  std::vector<std::string> changed;  // taken while they were written to
};

class MACHINE_API Recorder {
 public:
  explicit Recorder(std::shared_ptr<Machine const> machine, RecordingLimits limits = {});
  ~Recorder();
  Recorder(Recorder const&) = delete;
  Recorder& operator=(Recorder const&) = delete;

  // Passes every question on and remembers the answer, an absence with its reason too. It may
  // outlive the recorder. Where one thing is asked again, the last answer counts, but the clock
  // stands where it was read first.
  std::shared_ptr<Machine const> RecordingMachine() const;

  // Asks the machine all that it has sources for, except its files: of those only what identifies
  // the system and tells where its users live.
  void RecordEverything();

  // Takes the files along that a pattern finds (file_patterns.h); links stay links, and what is
  // neither file nor folder is never opened. Answers how many there are. To be called after all
  // that is asked; contents are copied by `Write`. Nothing when it is no pattern.
  std::optional<std::size_t> TakeFiles(std::string const& pattern);
  // Whole after `Write`.
  TakingReport const& Taking() const;

  // The paths of the files whose contents did not fit.
  std::vector<std::string> LeftOut() const;
  // False when more items were looked at than the limit.
  bool HasAllItems() const;

  // Lays the capture down in a folder that does not exist yet or is empty. `machine.plist` comes
  // last, so that one that was broken off is no capture. To be called once nobody asks any more.
  Fact<Done> Write(std::string const& folder, RecordWriter writer,
                   Redacting redacting = Redacting::kNothing) const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace machine
