// The directory of a Linux machine: its accounts, and on the running machine the network's
// directory behind them.
#pragma once

#include "machine/directory.h"
#include "machine/files.h"
#include "machine/live/directory_network.h"
#include "machine/live/root.h"

namespace machine::live {

class Directory final : public DirectorySource {
 public:
  Directory(Root const& root, FileSource const& files) : root_(root), files_(files) {}
  Fact<DirectoryRecords> Find(DirectoryQuery const& query) const override;

 private:
  Root const& root_;
  FileSource const& files_;
  NetworkDirectory network_;
};

}  // namespace machine::live
