// A bundle's type and creator, two codes of four bytes.
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>

#include <string>

#include "frameworks/CoreFoundation/bundle_layout.h"

struct BundlePackage {
  UInt32 type = 'B' << 24 | 'N' << 16 | 'D' << 8 | 'L';
  UInt32 creator = '?' << 24 | '?' << 16 | '?' << 8 | '?';
};

// Of a PkgInfo of the machine in use; false when that does not hold two codes.
bool ReadPackageFile(std::string const& path, BundlePackage& package);
// Leaves alone what the dictionary, which may be null, does not tell.
void ReadPackageKeys(CFDictionaryRef info, BundlePackage& package);
