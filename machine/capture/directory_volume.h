// The local node of a macOS volume's directory: a property list a record, below
// /var/db/dslocal/nodes/Default.
#pragma once

#include <string>

#include "machine/capture/record.h"
#include "machine/directory_records.h"
#include "machine/files.h"

namespace machine::capture {

class DirectoryVolume {
 public:
  DirectoryVolume(FileSource const& files, RecordReader reader) : files_(files), reader_(reader) {}

  // An absence where the volume has no such node. A record that cannot be understood is left out,
  // announced as malformed.
  Fact<Done> Offer(DirectoryQuery const& query, DirectoryAnswer& answer) const;

 private:
  void OfferFile(std::string const& path, DirectoryQuery const& query,
                 DirectoryAnswer& answer) const;

  FileSource const& files_;
  RecordReader const reader_;
};

}  // namespace machine::capture
