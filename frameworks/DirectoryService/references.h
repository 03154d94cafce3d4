// What is open, by number. Numbers are not used again, so that a stale one is told from others.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "machine/directory.h"

namespace directory_service {

struct OpenService {};

// What a search has found, and how much of it was handed out.
struct Records {
  std::unique_ptr<machine::DirectoryRecords> found;
  std::size_t next = 0;

  bool empty() const { return found == nullptr || next == found->size(); }
};

// A search's records end with their node at the latest.
struct Node {
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
using OpenNode = std::shared_ptr<Node>;

struct OpenAttributeList {
  tDirNodeReference node = 0;
  AttributesInBuffer attributes;
};

struct OpenValueList {
  tDirNodeReference node = 0;
  ValuesInBuffer values;
};

class References {
 public:
  static References& Shared();

  template <typename Opened>
  UInt32 Add(Opened opened) {
    std::lock_guard lock(guard_);
    return AddLocked(std::move(opened));
  }
  // 0, and a status, when what it is opened of is not open.
  template <typename Parent, typename Opened>
  UInt32 AddOf(UInt32 parent, Opened opened, tDirStatus& status) {
    std::lock_guard lock(guard_);
    status = StatusAs<Parent>(Locate(parent));
    return status == eDSNoErr ? AddLocked(std::move(opened)) : 0;
  }

  // A copy of what the number stands for, which keeps a node there; nothing when the number is not
  // open or stands for something else, and `status` is then set. Several threads may not use one
  // node at once.
  template <typename Opened>
  std::optional<Opened> Find(UInt32 number, tDirStatus& status) const {
    std::lock_guard lock(guard_);
    Reference const* const reference = Locate(number);
    status = StatusAs<Opened>(reference);
    if (status != eDSNoErr) return {};
    return std::get<Opened>(reference->opened);
  }

  template <typename Opened>
  tDirStatus StatusOf(UInt32 number) const {
    std::lock_guard lock(guard_);
    return StatusAs<Opened>(Locate(number));
  }

  // Where it is still open.
  template <typename Opened>
  void Replace(UInt32 number, Opened opened) {
    std::lock_guard lock(guard_);
    auto* const reference = const_cast<Reference*>(Locate(number));
    if (StatusAs<Opened>(reference) == eDSNoErr) reference->opened = std::move(opened);
  }

  template <typename Opened>
  tDirStatus Close(UInt32 number) {
    Reference closed;  // and what it holds ends when the guard is free
    std::lock_guard lock(guard_);
    Reference const* const reference = Locate(number);
    tDirStatus const status = StatusAs<Opened>(reference);
    if (status == eDSNoErr) closed = Remove(*reference);
    return status;
  }

  UInt32 NewNumber();
  // The node that the continue data belongs to; null when there is none.
  OpenNode NodeOfContinued(UInt32 number) const;
  std::size_t count() const;

 private:
  // Held for a few instructions, since a list of accounts is read by millions of calls.
  class Guard {
   public:
    void lock() {
      while (held_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() { held_.clear(std::memory_order_release); }

   private:
    std::atomic_flag held_;
  };

  struct Reference {
    UInt32 number = 0;
    std::variant<OpenService, OpenNode, OpenAttributeList, OpenValueList> opened;
  };

  template <typename Opened>
  UInt32 AddLocked(Opened opened) {
    open_.push_back({++last_, std::move(opened)});
    return last_;
  }
  template <typename Opened>
  static tDirStatus StatusAs(Reference const* reference) {
    if (reference == nullptr) return eDSInvalidReference;
    return std::holds_alternative<Opened>(reference->opened) ? eDSNoErr : eDSInvalidRefType;
  }
  static UInt32 ParentOf(Reference const& reference);

  // For who holds the guard. Null when the number is not open.
  Reference const* Locate(UInt32 number) const;
  // With all that was opened of it.
  Reference Remove(Reference const& reference);

  mutable Guard guard_;
  // By ascending number, as they were opened. What was opened last is mostly closed first.
  std::vector<Reference> open_;
  UInt32 last_ = 0;
};

}  // namespace directory_service

// How much is open, for tests that look whether all was closed.
CF_EXPORT UInt32 DirectoryServiceOpenReferenceCount(void);
