// What the Core Foundation functions of this folder throw. But for `CFURLErrorCode` none carries
// data: the class names the platform call that failed.
#pragma once

#include <CoreFoundation/CFBase.h>

#include "evaluator/plugin/exceptions.h"

// Not a property list, or its root is of another type.
class GATOTU_API ArrayCreateFromXMLDataFailed : public DebuggableException {};
class GATOTU_API DictionaryCreateFromXMLDataFailed : public DebuggableException {};

class GATOTU_API CFDataCreateError : public DebuggableException {};
class GATOTU_API CFStringCreateError : public DebuggableException {};

// The key is absent.
class GATOTU_API CFDictionaryGetValueIfPresentFailed : public DebuggableException {};

class GATOTU_API CFBundleGetInfoDictionaryFailed : public DebuggableException {};
class GATOTU_API CFBundleGetLocalInfoDictionaryFailed : public DebuggableException {};

// An object of another type than the one asked for.
class GATOTU_API GenericCFCastError : public DebuggableException {};
template <typename Reference>
class GATOTU_API CFCastError : public GenericCFCastError {};

// A URL's resource could not be read; the code is one of `CFURL.h`.
class GATOTU_API CFURLErrorCode : public DebuggableException {
 public:
  explicit CFURLErrorCode(SInt32 code) : code_(code) {}
  SInt32 Code() const { return code_; }

 private:
  SInt32 code_;
};

class GATOTU_API CFURLCreateWithStringFailed : public DebuggableException {};
class GATOTU_API CFURLCreateFromFSRefFailed : public DebuggableException {};
class GATOTU_API CFURLCreateWithFileSystemPathFailed : public DebuggableException {};
class GATOTU_API CFURLCreateWithFileSystemPathRelativeToBaseFailed : public DebuggableException {};
class GATOTU_API CFURLCreateCopyAppendingPathComponentFailed : public DebuggableException {};
class GATOTU_API CFURLCreateCopyDeletingLastPathComponentFailed : public DebuggableException {};
class GATOTU_API CFURLCopyLastPathComponentFailed : public DebuggableException {};
class GATOTU_API CFURLCopyFileSystemPathFailed : public DebuggableException {};
class GATOTU_API CFURLGetFSRefFailed : public DebuggableException {};
