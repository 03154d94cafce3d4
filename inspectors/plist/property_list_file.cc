#include "inspectors/plist/property_list_file.h"

#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFURL.h>

#include <string>

#include "evaluator/plugin/exceptions.h"
#include "machine/observer.h"
#include "portable/core_foundation/strings.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

// Reads the content once more: nothing but failing costs this.
std::string ReasonAgainst(CFDataRef content, CFTypeID root) {
  CFStringRef error = nullptr;
  CFPropertyListRef const list = CFPropertyListCreateFromXMLData(kCFAllocatorDefault, content,
                                                                 kCFPropertyListImmutable, &error);
  if (list != nullptr) {
    CFRelease(list);
    return root == CFArrayGetTypeID() ? "the list is no array" : "the list is no dictionary";
  }
  AutoCFString owned;
  owned.Seize(error);
  return error != nullptr ? MakeString(error, kCFStringEncodingUTF8, '?') : "no property list";
}

}  // namespace

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

void AnnounceMalformed(file const& file, CFDataRef content, CFTypeID root) {
  machine::Announce(file.Path() + " (" + ReasonAgainst(content, root) + ")",
                    machine::Outcome::kMalformed);
}
