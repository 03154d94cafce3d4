// What a recorder remembers of the registry: of each plane the entries that were reached, with
// those above them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "machine/capture/record.h"
#include "machine/capture/recorder.h"
#include "machine/machine.h"

namespace machine::capture {

class RecordedFacts;

// A property list may nest 512 deep, and an entry takes two levels.
inline constexpr std::size_t kMostRegistryDepth = 200;

// An entry in a plane. Entries of one identity that lie beside each other under one name are one.
struct RecordedEntry {
  std::uint64_t identity = 0;
  std::string path;
  std::size_t depth = 0;
  Fact<std::string> name{std::string()};
  std::string location;
  std::optional<Fact<std::string>> class_name;
  std::optional<Fact<RecordDictionary>> properties;
  // Why the children are not all there; nothing when they are.
  std::optional<Absence> missing_children;
  bool is_cut = false;  // did not fit
  std::map<std::pair<std::uint64_t, std::string>, std::unique_ptr<RecordedEntry>> children;
  std::vector<RecordedEntry*> order;  // in which they came
};

// Any thread may add to it. Entries stay where they are for good.
class RecordedRegistry {
 public:
  explicit RecordedRegistry(RecordingLimits limits) : limits_(limits) {}

  // The entry above all planes.
  RecordedEntry& Above(std::uint64_t identity);
  // Where a node is in a plane; those above it are asked for, unless they are known. Null where it
  // is not there, or does not fit any more.
  RecordedEntry* Place(RegistrySource const& asked, std::string_view plane,
                       RegistryNode const& node);
  // A node that came as another's child. Null where it does not fit any more.
  RecordedEntry* AddChild(RecordedEntry& parent, std::string_view plane, RegistryNode const& node);

  void Keep(RecordedEntry& entry, Fact<std::string> const& class_name);
  void Keep(RecordedEntry& entry, Fact<RecordDictionary> const& properties);
  // The child that came at that place in the parent's order.
  void KeepOrder(RecordedEntry& parent, std::size_t at, RecordedEntry& child);
  // How the children ended: nothing, after the last of them.
  void KeepEnd(RecordedEntry& parent, std::optional<Absence> why);

  bool IsFull() const;

  void KeepMissingPlane(std::string_view plane, Absence const& why);

  // For writing, once nobody asks any more. What is no plane's is added to the facts.
  void AddTo(RecordedFacts& facts) const;
  // The planes by their names, each as its file has it.
  std::vector<std::pair<std::string, Record>> Planes() const;

 private:
  using Key = std::pair<std::uint64_t, std::string>;
  RecordedEntry* Add(std::unique_ptr<RecordedEntry>& place, RecordedEntry entry);
  RecordedEntry* FirstOf(RegistrySource const& asked, std::string_view plane);
  bool Spend(std::size_t bytes);
  Absence Full() const;

  RecordingLimits const limits_;
  mutable std::mutex guard_;
  std::optional<RecordedEntry> above_;
  std::map<std::string, std::unique_ptr<RecordedEntry>, std::less<>> planes_;
  std::map<std::string, Absence, std::less<>> missing_planes_;
  std::uint64_t entries_ = 0, bytes_ = 0;
  bool is_full_ = false;
};

// The registry of a recording machine.
class RecordingRegistry final : public RegistrySource {
 public:
  RecordingRegistry(std::shared_ptr<Machine const> asked, RecordedFacts& facts,
                    std::shared_ptr<RecordedRegistry> recorded)
      : asked_(std::move(asked)), facts_(facts), recorded_(std::move(recorded)) {}
  Fact<SharedRegistryNode> Root() const override;
  Fact<SharedRegistryNode> NodeAt(std::string_view plane, std::string_view path) const override;

 private:
  std::shared_ptr<Machine const> const asked_;
  RecordedFacts& facts_;
  std::shared_ptr<RecordedRegistry> const recorded_;
};

// Asks for every entry of every plane and all that is known of it, as far as it is recorded.
void AskRegistry(RegistrySource const& registry, RecordedRegistry const& recorded);

}  // namespace machine::capture
