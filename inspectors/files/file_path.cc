#include "inspectors/files/file_path.h"

#include <CoreFoundation/CFURL.h>

#include "frame/inspector_strings.h"
#include "frame/prop.h"
#include "frame/registration.h"
#include "portable/core_foundation/urls.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

inspector_string Path(filesystem_object const& object, CFURLPathStyle style) {
  FileLocation const location = object.Location();
  AutoCFString const path = FileSystemPath(location.URL(), style);
  return AsInspectorString(path.Get());
}

}  // namespace

inspector_string HFSPathOfObject(Of, filesystem_object const& object) {
  return Path(object, kCFURLHFSPathStyle);
}

inspector_string POSIXPathOfObject(Of, filesystem_object const& object) {
  return Path(object, kCFURLPOSIXPathStyle);
}

inspector_string AsString(filesystem_object const& object) {
  return Path(object, kCFURLPOSIXPathStyle);
}

namespace {

Prop hfs_path("hfs path", "hfs paths", HFSPathOfObject, nullptr);
Prop posix_path("posix path", "posix paths", POSIXPathOfObject, nullptr);
Prop pathname("pathname", "pathnames", POSIXPathOfObject, nullptr);
Cast<filesystem_object, inspector_string> as_string("string", AsString, nullptr);

}  // namespace
