// The dictionaries of bundles. The handles share the bundle's own object and outlive the bundle.
// `CFBundleGetInfoDictionaryFailed`, from both, when the bundle has no information dictionary.
#pragma once

#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/errors.h"

GATOTU_API AutoCFDictionary BundleGetInfoDictionary(CFBundleRef bundle);
// With the texts of the preferred language over it.
GATOTU_API AutoCFDictionary BundleGetLocalInfoDictionary(CFBundleRef bundle);
