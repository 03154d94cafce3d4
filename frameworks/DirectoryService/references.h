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
  UInt32 record = 0;
};

// Where the values are in the buffer: an attribute may have thousands, each of them asked for.
struct OpenValueList {
  struct Place {
    UInt32 start = 0, length = 0;
  };
  tDirNodeReference node = 0;
  std::vector<Place> values;
};

class References {
 public:
  static References& Shared();

  template <typename Opened>
  UInt32 Add(Opened opened) {
    std::lock_guard lock(guard_);
    open_.emplace(++last_, std::make_shared<Entry>(std::move(opened)));
    return last_;
  }

  // Null when the number is not open or stands for something else; `status` is then set. Holds what
  // it finds open. Several threads may not use one node at once.
  template <typename Opened>
  std::shared_ptr<Opened> Find(UInt32 number, tDirStatus& status) const {
    std::lock_guard lock(guard_);
    auto const found = open_.find(number);
    Opened* const opened = found == open_.end() ? nullptr : std::get_if<Opened>(&*found->second);
    if (opened != nullptr) return {found->second, opened};
    status = found == open_.end() ? eDSInvalidReference : eDSInvalidRefType;
    return nullptr;
  }

  template <typename Opened>
  tDirStatus Close(UInt32 number) {
    tDirStatus status = eDSNoErr;
    if (Find<Opened>(number, status) != nullptr) Remove(number);
    return status;
  }

  UInt32 NewNumber();
  // The node that the continue data belongs to; null when there is none.
  std::shared_ptr<OpenNode> NodeOfContinued(UInt32 number) const;
  std::size_t count() const;

 private:
  using Entry = std::variant<OpenService, OpenNode, OpenAttributeList, OpenValueList>;

  static UInt32 ParentOf(Entry const& entry);
  // With all that was opened of it.
  void Remove(UInt32 number);

  mutable std::mutex guard_;
  std::map<UInt32, std::shared_ptr<Entry>> open_;
  UInt32 last_ = 0;
};

}  // namespace directory_service

// How much is open, for tests that look whether all was closed.
CF_EXPORT UInt32 DirectoryServiceOpenReferenceCount(void);
