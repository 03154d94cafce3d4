// Bundles below a temporary folder, and short ways to ask them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

#include "tests/frameworks/cf_text.h"
#include "tests/machine/recorded_tree.h"
#include "tests/support/big_endian_text.h"
#include "tests/support/on_scripted_machine.h"

using OwnedBundle = Owned<CFBundleRef>;

inline constexpr CFStringEncoding kUtf8 = kCFStringEncodingUTF8;

inline OwnedURL UrlOf(std::string const& path) {
  return OwnedURL(
      CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<UInt8 const*>(path.data()),
                                              static_cast<CFIndex>(path.size()), true));
}

inline OwnedBundle Open(std::string const& path) {
  return OwnedBundle(CFBundleCreate(nullptr, UrlOf(path).get()));
}

// In the old text form, which is the shortest to write.
inline std::string Info(std::string const& version, std::string const& identifier = "org.example") {
  return "{CFBundleVersion = \"" + version + "\"; CFBundleIdentifier = \"" + identifier + "\";}";
}

inline std::string Value(OwnedBundle const& bundle, char const* key) {
  return TextOf(CFBundleGetValueForInfoDictionaryKey(bundle.get(), Make(key, kUtf8).get()));
}

inline std::string Package(OwnedBundle const& bundle) {
  UInt32 type = 0, creator = 0;
  CFBundleGetPackageInfo(bundle.get(), &type, &creator);
  return BigEndianText(type, 4) + BigEndianText(creator, 4);
}

inline CFBundleRef WithIdentifier(char const* identifier) {
  return CFBundleGetBundleWithIdentifier(Make(identifier, kUtf8).get());
}

class BundleTest : public OnScriptedMachine {
 protected:
  BundleTest() { machine_->files = {tree_machine_, &tree_machine_->Files()}; }

  RecordedTree tree_;
  std::shared_ptr<machine::Machine const> tree_machine_ = tree_.Machine();
};
