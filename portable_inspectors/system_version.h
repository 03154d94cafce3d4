// What the system of the machine in use says of itself.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

#include "evaluator/plugin/export.h"
#include "frame/inspector_version.h"
#include "portable/core_foundation/auto_cf.h"

class GATOTU_API OSXVersionInfo {
 public:
  explicit OSXVersionInfo(AutoCFDictionary values) : values_(std::move(values)) {}

  // UTF-8. `NoSuchObject` when there is no such key or its value is no string.
  std::string GetStringValue(CFStringRef key) const;

  // Of the machine that was asked last, by `GetOSXVersionInfo`; empty where it does not tell. The
  // bytes stay where they are until another machine is asked.
  static std::string msBuild;
  static std::string msArch;

 private:
  AutoCFDictionary values_;
};

// Asks the machine anew. `NoSuchObject` when it tells nothing of its system.
GATOTU_API OSXVersionInfo GetOSXVersionInfo();

namespace MacintoshPlatform {

// `NoSuchObject` where the system has no version, as one that is always on its way.
GATOTU_API inspector_version sys_version_of();

}  // namespace MacintoshPlatform
