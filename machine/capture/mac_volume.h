// What the property lists of a macOS volume tell of the machine it belongs to.
#pragma once

#include <string>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/files.h"
#include "machine/sources.h"

namespace machine::capture {

class MacVolume {
 public:
  MacVolume(FileSource const& files, RecordReader reader) : files_(files), reader_(reader) {}

  Fact<SystemVersion> Version() const;
  // Of the volume, as it stands below its icon.
  Fact<std::string> Label() const;
  Fact<std::string> ComputerName() const;
  Fact<std::string> HostName() const;
  // By the records of the local directory.
  Fact<std::string> HomeOf(std::string const& user) const;
  Fact<std::vector<std::string>> UserNames() const;

 private:
  Fact<Record> Read(std::string const& path) const;

  FileSource const& files_;
  RecordReader const reader_;
};

}  // namespace machine::capture
