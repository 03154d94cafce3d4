// What tells one state of a file or folder from another, for what is kept of its content.
#pragma once

#include "machine/files.h"

class ItemIdentity {
 public:
  // By a status taken before the content was read.
  explicit ItemIdentity(machine::ItemStatus const& status);

  // Whether what was read is still the item's content. Of an item changed only moments before it
  // was read this is never sure, because the next change may get the same time.
  bool StillHolds(machine::ItemStatus const& status) const;

 private:
  machine::ItemStatus status_;
  bool is_settled_;
};
