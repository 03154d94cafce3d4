// What is open, by number. Numbers are not used again, so that a stale one is told from others.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "machine/directory.h"

namespace directory_service {

struct OpenService {};

// What a search has found and not handed out yet. It ends with its node at the latest.
using Records = std::deque<machine::DirectoryRecord>;

struct OpenNode {
  tDirReference service = 0;
  machine::DirectoryNode node = machine::DirectoryNode::kSearch;
  std::map<UInt32, Records> continued;  // by the number that the continue data is

  // The answer to a question for which the buffer was too small, as it is asked again then.
  struct Kept {
    std::vector<machine::DirectoryQuery> queries;
    std::uint64_t machine = 0;
    Records records;
    std::size_t needed_size = 0;  // of a buffer
  };
  Kept kept;
};

struct OpenAttributeList {
  tDirNodeReference node = 0;
  AttributesInBuffer attributes;
};

// Where the values are in the buffer: an attribute may have thousands, each of them asked for.
struct OpenValueList {
  tDirNodeReference node = 0;
  std::vector<PlaceInBuffer> values;
};

class References {
 public:
  static References& Shared();

  template <typename Opened>
  UInt32 Add(Opened opened) {
    std::lock_guard lock(guard_);
    open_.push_back({++last_, std::make_shared<Entry>(std::move(opened))});
    return last_;
  }

  // Null when the number is not open or stands for something else; `status` is then set. Holds what
  // it finds open. Several threads may not use one node at once.
  template <typename Opened>
  std::shared_ptr<Opened> Find(UInt32 number, tDirStatus& status) const {
    std::lock_guard lock(guard_);
    auto const* const reference = Locate(number);
    status = StatusAs<Opened>(reference);
    if (status != eDSNoErr) return nullptr;
    return {reference->entry, std::get_if<Opened>(&*reference->entry)};
  }

  template <typename Opened>
  tDirStatus Close(UInt32 number) {
    std::lock_guard lock(guard_);
    auto const* const reference = Locate(number);
    tDirStatus const status = StatusAs<Opened>(reference);
    if (status == eDSNoErr) Remove(*reference);
    return status;
  }

  UInt32 NewNumber();
  // The node that the continue data belongs to; null when there is none.
  std::shared_ptr<OpenNode> NodeOfContinued(UInt32 number) const;
  std::size_t count() const;

 private:
  using Entry = std::variant<OpenService, OpenNode, OpenAttributeList, OpenValueList>;

  struct Reference {
    UInt32 number;
    std::shared_ptr<Entry> entry;
  };

  template <typename Opened>
  static tDirStatus StatusAs(Reference const* reference) {
    if (reference == nullptr) return eDSInvalidReference;
    return std::holds_alternative<Opened>(*reference->entry) ? eDSNoErr : eDSInvalidRefType;
  }
  static UInt32 ParentOf(Entry const& entry);

  // For who holds the guard. Null when the number is not open.
  Reference const* Locate(UInt32 number) const;
  // With all that was opened of it.
  void Remove(Reference const& reference);

  mutable std::mutex guard_;
  // By ascending number, as they were opened. What was opened last is mostly closed first.
  std::vector<Reference> open_;
  UInt32 last_ = 0;
};

}  // namespace directory_service

// How much is open, for tests that look whether all was closed.
CF_EXPORT UInt32 DirectoryServiceOpenReferenceCount(void);
