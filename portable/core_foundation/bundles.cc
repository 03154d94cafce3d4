#include "portable/core_foundation/bundles.h"

#include "portable/core_foundation/objects.h"

namespace {

AutoCFDictionary Checked(CFDictionaryRef dictionary) {
  if (dictionary == nullptr) throw CFBundleGetInfoDictionaryFailed();
  return Duplicate(dictionary);
}

}  // namespace

AutoCFDictionary BundleGetInfoDictionary(CFBundleRef bundle) {
  return Checked(CFBundleGetInfoDictionary(bundle));
}

AutoCFDictionary BundleGetLocalInfoDictionary(CFBundleRef bundle) {
  return Checked(CFBundleGetLocalInfoDictionary(bundle));
}
