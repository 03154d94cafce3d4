#include "inspectors/plist/property_list_file.h"

#include <CoreFoundation/CFURL.h>

#include "evaluator/plugin/exceptions.h"
#include "portable_inspectors/filesystem_object.h"

AutoCFData ContentOf(file const& file) {
  FileLocation const location = file.Location();
  CFDataRef content = nullptr;
  SInt32 error = 0;
  if (CFURLCreateDataAndPropertiesFromResource(kCFAllocatorDefault, location.URL(), &content,
                                               nullptr, nullptr, &error) == 0) {
    throw NoSuchObject();
  }
  AutoCFData owned;
  owned.Seize(content);
  return owned;
}
