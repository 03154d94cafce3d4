// What is open, by number. Numbers are not used again for as long as there are others, so that a
// stale one is told from those in use.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <variant>
#include <vector>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "machine/directory.h"
#include "machine/spin_lock.h"

namespace directory_service {

// What a search has found, and how much of it was handed out.
struct Records {
  std::unique_ptr<machine::DirectoryRecords> found;
  std::size_t next = 0;
  // Of a buffer that was too small: how large it has to be, with the values or without.
  std::size_t needed_size = 0;
  bool needed_for_values = false;

  bool empty() const { return found == nullptr || next == found->size(); }
};

struct Node {
  tDirReference service = 0;
  machine::DirectoryNode node = machine::DirectoryNode::kSearch;

  // The answer to a question for which the buffer was too small, as it is asked again then.
  struct Kept {
    std::vector<machine::DirectoryQuery> queries;
    std::uint64_t machine = 0;
    std::shared_ptr<Records> records;
  };
  Kept kept;
};

// All that is opened of something ends with it.
struct OpenService {};
using OpenNode = std::shared_ptr<Node>;
// What was not handed out yet; its number is the continue data.
struct OpenSearch {
  tDirNodeReference node = 0;
  std::shared_ptr<Records> records;
};
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

  // 0, and a status, when what it is opened of is not open.
  template <typename Opened>
  UInt32 Add(Opened opened, tDirStatus& status) {
    std::lock_guard lock(guard_);
    return AddLocked(std::move(opened), status);
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
    Closed closed;
    std::lock_guard lock(guard_);
    auto* const reference = const_cast<Reference*>(Locate(number));
    tDirStatus const status = StatusAs<Opened>(reference);
    if (status != eDSNoErr) return status;
    constexpr bool kIsList =
        std::is_same_v<Opened, OpenAttributeList> || std::is_same_v<Opened, OpenValueList>;
    if constexpr (kIsList) {
      Leave(reference->parent);
      Erase(*reference);
    } else {
      Remove(*reference, closed);
    }
    return status;
  }

  std::size_t count() const;
  // The next number is behind it.
  void SetLastNumber(UInt32 number);

 private:
  static constexpr std::size_t kNear = 4;

  struct Reference {
    UInt32 number = 0;
    UInt32 parent = 0;       // what it is opened of
    UInt32 child_count = 0;  // how many are opened of it
    std::variant<OpenService, OpenNode, OpenSearch, OpenAttributeList, OpenValueList> opened;
  };
  // What ends when the guard is free, as far as it holds anything.
  using Closed = std::vector<Reference>;

  template <typename Opened>
  static tDirStatus StatusAs(Reference const* reference) {
    if (reference == nullptr) return eDSInvalidReference;
    return std::holds_alternative<Opened>(reference->opened) ? eDSNoErr : eDSInvalidRefType;
  }
  static UInt32 ParentOf(OpenService const&) { return 0; }
  static UInt32 ParentOf(OpenNode const& node) { return node->service; }
  template <typename Opened>
  static UInt32 ParentOf(Opened const& opened) {
    return opened.node;
  }

  template <typename Opened>
  UInt32 AddLocked(Opened opened, tDirStatus& status) {
    UInt32 const parent_number = ParentOf(opened);
    Reference* const parent =
        parent_number == 0 ? nullptr : const_cast<Reference*>(Locate(parent_number));
    status = parent_number != 0 && parent == nullptr ? eDSInvalidReference : eDSNoErr;
    if (status != eDSNoErr) return 0;
    if (parent != nullptr) ++parent->child_count;
    bool const is_next =
        last_ != UINT32_MAX && (open_.size() == closed_count_ || open_.back().number <= last_);
    if (is_next) {
      open_.push_back({++last_, parent_number, 0, std::move(opened)});
    } else {
      InsertFar({NextNumber(), parent_number, 0, std::move(opened)});
    }
    return last_;
  }

  // For who holds the guard. Null when it is not open. What is asked for is mostly among the last:
  // a service, its node, a record and an attribute.
  Reference const* Locate(UInt32 number) const {
    std::size_t const near = open_.size() - std::min(kNear, open_.size() - closed_count_);
    for (std::size_t i = open_.size(); i-- > near;) {
      if (open_[i].number == number) return &open_[i];
    }
    return near == closed_count_ ? nullptr : LocateFar(number);
  }
  Reference const* LocateFar(UInt32 number) const;
  // Where numbers have begun anew.
  UInt32 NextNumber();
  void InsertFar(Reference reference);
  void Leave(UInt32 parent_number) {
    auto* const parent = const_cast<Reference*>(Locate(parent_number));
    if (parent != nullptr) --parent->child_count;
  }
  // With all that was opened of it.
  void Remove(Reference& reference, Closed& closed);
  void Erase(Reference& reference) {
    if (&reference == &open_.back()) return open_.pop_back();
    EraseFar(reference);
  }
  void EraseFar(Reference& reference);

  // Held for a few instructions: a list of accounts is read by millions of calls.
  mutable machine::SpinLock guard_;
  // By ascending number, as they were opened for the most part, behind some that are closed. What
  // was opened last is mostly closed first, and what is held long in the order it was opened.
  std::vector<Reference> open_;
  std::size_t closed_count_ = 0;
  UInt32 last_ = 0;
};

}  // namespace directory_service

// How much is open, for tests that look whether all was closed.
CF_EXPORT UInt32 DirectoryServiceOpenReferenceCount(void);
// What is opened next has the number behind this one, for tests of what comes after the last.
CF_EXPORT void DirectoryServiceSetLastReference(UInt32 number);
