// One recorded plane of the registry as a flat list of its entries.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/capture/record.h"

namespace machine::capture {

class RegistryPlane {
 public:
  using Index = std::uint32_t;  // 0 is the plane's first node

  // `source` is the name of the file. Malformed where it is neither a dictionary nor an array;
  // absent where it has no entry.
  static Fact<std::shared_ptr<RegistryPlane const>> Make(std::string name, std::string source,
                                                         Record document);

  std::string const& name() const { return name_; }
  std::string const& source() const { return source_; }
  // The entry above all planes, null where the file has none.
  RecordDictionary const* above() const { return above_; }

  // Of an entry: half open, and next to each other in the registry's order.
  std::pair<Index, Index> ChildrenOf(Index entry) const {
    return {entries_[entry].first_child, entries_[entry].end_of_children};
  }
  RecordDictionary const& FactsOf(Index entry) const { return *entries_[entry].facts; }
  std::optional<std::uint64_t> RecordedIdentityOf(Index entry) const;
  Fact<std::string> NameOf(Index entry) const;
  // "/name@location/..." from the first node.
  Fact<std::string> PathOf(Index entry) const;

  // By path, where an entry's name may stand for itself if no other beside it has that name. Of
  // several that have the same path the first.
  std::optional<Index> Find(std::string_view path) const;
  std::optional<Index> FindIdentity(std::uint64_t identity) const;

 private:
  struct Entry {
    RecordDictionary const* facts;
    Index parent, first_child = 0, end_of_children = 0;
  };
  struct Step;  // on the way to the entry of a path

  RegistryPlane(std::string name, std::string source, Record document)
      : name_(std::move(name)), source_(std::move(source)), document_(std::move(document)) {}
  RecordArray const* ChooseFirst();
  void AddChildren(Index parent, RecordArray const& children);
  void TakeSteps(Step const& from, std::string_view path, std::vector<Step>& steps) const;

  std::string const name_, source_;
  Record const document_;
  RecordDictionary const* above_ = nullptr;
  RecordDictionary made_;  // the first node of a list that has several on top
  std::vector<Entry> entries_;
  mutable std::once_flag are_identities_known_;
  mutable std::unordered_map<std::uint64_t, Index> identities_;
};

// A text of an entry; a name may be bytes of any kind.
Fact<std::string> TextOfEntry(RecordDictionary const& entry, char const* key,
                              std::string const& source);

// The properties of an entry, without what the registry itself says of it.
RecordDictionary PropertiesOfEntry(RecordDictionary const& entry);

}  // namespace machine::capture
