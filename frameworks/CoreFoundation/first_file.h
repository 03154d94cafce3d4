// The first of several files below a folder, and whether it still is the first and unchanged, which
// is told from the state of few of them.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "frameworks/CoreFoundation/file_state.h"

class FirstFile {
 public:
  // The folder is a path without a `/` at its end, so that the root is empty. Names are paths below
  // it, the same ones in every call.
  FirstFile(std::string const& folder, std::span<std::string const> names);

  bool is_found() const { return file_.has_value(); }
  // Only when it is found.
  std::size_t index() const { return index_; }
  FileState const& state() const { return *file_; }

  // A file that is not settled may have changed nevertheless.
  bool IsStillIn(std::string const& folder, std::span<std::string const> names) const;
  bool is_settled() const { return !file_ || file_->is_settled; }

 private:
  std::size_t index_ = 0;
  std::optional<FileState> file_;
  std::optional<FileState> folder_;
  // Whether all that is missing would show in the folder itself if it were there.
  bool folder_tells_ = true;
};
