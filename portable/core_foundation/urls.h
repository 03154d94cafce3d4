// URLs of files. Each function throws the error class that bears the name of the platform call that
// failed.
#pragma once

#include <CoreServices/CoreServices.h>

#include "portable/core_foundation/auto_cf.h"
#include "portable/core_foundation/errors.h"

struct FSRef;
struct FSSpec;

GATOTU_API AutoCFURL MakeURL(CFStringRef text);
GATOTU_API AutoCFURL MakeURL(FSRef const& ref);
// `OSError` when the item it names does not exist.
GATOTU_API AutoCFURL MakeURL(FSSpec const& fs_spec);
GATOTU_API AutoCFURL MakeURLFromFileSystemPath(CFStringRef path, CFURLPathStyle style,
                                               bool isDirectory);
GATOTU_API AutoCFURL MakeURLFromFileSystemPathRelativeToBase(CFStringRef path, CFURLPathStyle style,
                                                             bool isDirectory, CFURLRef base);
GATOTU_API AutoCFURL CreateCopyAppendingPathComponent(CFURLRef url, CFStringRef component,
                                                      bool isDirectory);
GATOTU_API AutoCFURL CreateCopyDeletingLastPathComponent(CFURLRef url);

GATOTU_API FSRef MakeFSRef(CFURLRef url);
// `OSError` with the platform's code.
GATOTU_API FSRef MakeFSRef(FSSpec const& fs_spec);

GATOTU_API AutoCFString CopyLastPathComponent(CFURLRef url);
GATOTU_API AutoCFString FileSystemPath(CFURLRef url, CFURLPathStyle style);

// The whole resource; `CFURLErrorCode` with the platform's code when it cannot be read.
GATOTU_API AutoCFData GetData(CFURLRef url);
