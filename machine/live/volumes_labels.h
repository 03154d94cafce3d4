// The labels of file systems as the device manager links them, which anyone may read. Probing the
// disks would tell the same to root alone.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "machine/live/root.h"

namespace machine::live {

class Labels {
 public:
  static constexpr char kFolder[] = "/dev/disk/by-label";

  // Of the running machine: another number when labels changed.
  static std::int64_t Version();

  explicit Labels(Root const& root);

  // By a device as mounts name it, "/dev/mapper/data"; empty where there is none.
  std::string Of(std::string const& device) const;

 private:
  Root const& root_;
  std::map<std::string, std::string> by_device_;
};

}  // namespace machine::live
