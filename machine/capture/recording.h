// What a recorder remembers. Any thread may add to it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "machine/capture/directory_recording.h"
#include "machine/capture/record.h"
#include "machine/capture/recorded_item.h"
#include "machine/capture/recorder.h"
#include "machine/capture/registry_recording.h"
#include "machine/capture/scsi_recording.h"
#include "machine/capture/volumes_recording.h"
#include "machine/machine.h"

namespace machine::capture {

using Content = std::shared_ptr<std::string const>;

// Facts other than files, as the document of a capture has them.
class RecordedFacts {
 public:
  void Keep(std::string const& key, Fact<Record> fact);
  void Keep(std::string const& group, std::string const& key, Fact<Record> fact);
  void KeepProcess(std::int32_t pid, Fact<Process> const& process);
  void KeepProcesses(Fact<std::vector<Process>> const& processes);
  // Passes a fact through.
  template <typename Value, typename Convert>
  Fact<Value> Passed(std::string const& key, Fact<Value> fact, Convert&& convert) {
    Keep(key, fact ? Fact<Record>(convert(*fact)) : Fact<Record>(fact.absence()));
    return fact;
  }
  template <typename Value, typename Convert>
  Fact<Value> Passed(std::string const& group, std::string const& key, Fact<Value> fact,
                     Convert&& convert) {
    Keep(group, key, fact ? Fact<Record>(convert(*fact)) : Fact<Record>(fact.absence()));
    return fact;
  }

  // The whole document but for its files.
  RecordDictionary Document(RecordedScsi const& scsi) const;

 private:
  void AddEnvironment(RecordDictionary& document, RecordArray& partial) const;
  void AddProcesses(RecordDictionary& document, RecordArray& partial) const;

  mutable std::mutex guard_;
  std::map<std::string, Fact<Record>> facts_;
  std::map<std::string, std::map<std::string, Fact<Record>>> groups_;
  std::map<std::int32_t, std::string> processes_;
  bool has_all_processes_ = false;
};

// Items by their paths without links, and the contents that were read.
class RecordedItems {
 public:
  RecordedItems(FileSource const& asked, RecordingLimits limits) : asked_(asked), limits_(limits) {}

  // Where a path leads. What lies on the way is asked, and remembered, unless it is known.
  Fact<std::string> Walk(std::string const& path, Links links);
  void KeepItem(std::string const& place, Known known, Item const& item, bool is_companion = false);
  void KeepAbsence(std::string const& place, Absence const& absence);
  void KeepTarget(std::string const& place, Fact<std::string> target);
  void KeepListing(std::string const& place, Fact<RecordedListing> listing);
  void KeepSpace(std::string const& place, Fact<VolumeSpace> const& space);
  // Says so instead where it does not fit any more.
  void KeepContent(std::string const& place, Fork fork, Content content);
  void KeepContentAbsence(std::string const& place, Fork fork, Absence absence);
  void KeepContentTooLarge(std::string const& place, Fork fork);
  // What was read of a content that is not kept whole. False where it is too much to be a part.
  bool KeepPart(std::string const& place, std::uint64_t offset, std::string_view bytes,
                std::size_t wanted);
  // Whether parts will do of a file of that size: nobody has wanted all of it so far.
  bool HasParts(std::string const& place, std::uint64_t bytes) const;
  std::uint64_t RoomForContent(std::string const& place, Fork fork) const;
  // The content is copied when the capture is laid down, unless it was read already.
  void KeepToTake(std::string const& place);
  // The resource fork is there as far as the companion is.
  void KeepForkInCompanion(std::string const& place);

  // For writing, once nobody asks any more. Parents come before what is in them.
  std::map<std::string, RecordedItem> const& items() const { return items_; }
  Content ContentOf(std::string const& place, Fork fork) const;
  // Whether there were more than fit.
  bool is_full() const { return is_full_; }
  RecordingLimits const& limits() const { return limits_; }
  std::uint64_t room() const { return limits_.content_bytes - content_bytes_; }

 private:
  friend class ItemsAsked;
  // Null when there are too many.
  RecordedItem* At(std::string const& place);
  bool HasAll(std::string const& place, RecordedListing const& listing) const;
  void DropParts(RecordedItem& item);
  void DropContent(std::string const& place, Fork fork);
  std::map<std::string, Content>& ContentsOf(Fork fork) {
    return fork == Fork::kData ? contents_ : resource_forks_;
  }

  FileSource const& asked_;
  RecordingLimits const limits_;
  mutable std::recursive_mutex guard_;
  std::map<std::string, RecordedItem> items_;
  std::map<std::string, Content> contents_, resource_forks_;
  std::uint64_t content_bytes_ = 0;
  bool is_full_ = false;
};

struct Recording {
  Recording(std::shared_ptr<Machine const> machine, RecordingLimits limits)
      : asked(std::move(machine)),
        items(asked->Files(), limits),
        registry(std::make_shared<RecordedRegistry>(limits)) {}

  std::shared_ptr<Machine const> const asked;
  RecordedFacts facts;
  RecordedScsi scsi;
  RecordedVolumes volumes;
  RecordedItems items;
  RecordedDirectory directory;
  std::shared_ptr<RecordedRegistry> const registry;  // with its nodes
  TakingReport taking;
};

// The files of a recording machine.
std::unique_ptr<FileSource const> MakeRecordingFiles(Recording& recording);
// The machine itself, which keeps the recording.
std::shared_ptr<Machine const> MakeRecordingMachine(std::shared_ptr<Recording> recording);

}  // namespace machine::capture
