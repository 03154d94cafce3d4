// Bundles: folders of a standard structure, such as applications and frameworks.
#pragma once

#include <CoreFoundation/CFBundle.h>

#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"
#include "inspectors/files/file_code.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/shared_reference.h"

class folder;

class Bundle {
 public:
  // Takes over one reference that the caller owns; not null.
  explicit Bundle(CFBundleRef owned) : bundle_(owned) {}

  CFBundleRef Reference() const { return bundle_.Get(); }

 private:
  SharedReference<CFBundleRef> bundle_;
};

template <>
struct InspectorTypeName<Bundle> {
  static constexpr char const* kName = "bundle";
};

// `NoSuchObject` for a folder that is no bundle.
Bundle bundle_of(folder const& folder);
// By identifier, in Mac Roman: of the bundles that this process has opened already, no folder is
// searched. `NoSuchObject` when none has it.
Bundle bundle_named(unsigned char const* name, unsigned long length);

// The number of the version without its stage; where that is 0, `CFBundleShortVersionString`.
// `NoSuchObject` when neither is there or the text is no version, `CFCastError<CFStringRef>` when
// it is not text at all.
inspector_version version_of(Bundle const& bundle);
// The same with the stage and the revision in it, and of `CFBundleVersion`.
inspector_version bundle_version_of(Bundle const& bundle);

file_type type_of(Bundle const& bundle);
file_signature creator_of(Bundle const& bundle);

// `NoSuchObject` when it has none.
OSXDictionary global_dictionary_of(Bundle const& bundle);
// In the language that the user prefers.
OSXDictionary local_dictionary_of(Bundle const& bundle);
