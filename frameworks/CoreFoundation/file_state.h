// What tells one state of a file or folder from another, for what is kept of its content.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "machine/files.h"

struct FileState {
  machine::ItemKind kind = machine::ItemKind::kOther;
  std::uint64_t device = 0, inode = 0, bytes = 0;
  machine::FileTime modification, change;
  // Whether every later change is sure to show. File systems keep time in steps, and two changes
  // within one look alike.
  bool is_settled = false;

  // Of the machine in use, links followed. Nothing where there is no file, or it may not be looked
  // at.
  static std::optional<FileState> Of(std::string const& path);

  // Whether settled or not.
  bool operator==(FileState const& other) const;

  // Whether what was read in this state, or after it, is sure to be the content in the other one.
  bool StillHolds(FileState const& now) const { return is_settled && *this == now; }
};
