// The folder of a capture while it is written.
#pragma once

#include <string>

#include "machine/capture/recording.h"
#include "machine/capture/taken_content.h"
#include "machine/file_descriptor.h"

namespace machine::capture {

// What is laid down of an item beside itself; null where it was not read.
struct CopiedContent {
  std::string path;
  Content data, resource_fork;
  ContentTaker* taker = nullptr;  // where the data are still to be copied
};

class CaptureFolder {
 public:
  // A folder that is new or empty.
  static Fact<CaptureFolder> Make(std::string const& path);

  // Items come in the order of their paths. A content that this disk cannot hold is absent from
  // `item` then.
  void LayDown(CopiedContent const& content, RecordedItem& item, bool has_own_companion) const;
  // A plane of the registry.
  Fact<Done> LayDownPlane(std::string const& plane, std::string const& document) const;
  // The document, which makes the folder a capture.
  Fact<Done> Finish(std::string const& document) const;

 private:
  // With `errno` set where it failed.
  FileDescriptor OpenParent(std::string const& path) const;
  bool LayDownItem(CopiedContent const& content, RecordedItem& item, bool has_own_companion) const;

  std::string path_;
  FileDescriptor folder_, root_;
};

}  // namespace machine::capture
