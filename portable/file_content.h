// The content of a file as a whole.
#pragma once

#include <string>

#include "portable/file_location.h"
#include "portable/file_writer.h"
#include "portable/unicode_reference.h"

// The whole data fork as it is while it is read; throws what opening and reading throw.
GATOTU_API std::string ReadFileIntoString(FileLocation const& location);
// The same, UTF-8 throughout, else `CFStringCreateError`.
GATOTU_API std::string ReadFileIntoUString(FileLocation const& location);

// Makes the bytes the file's whole content, in one step: whoever opens the file, even after the
// process was killed or the machine lost its power, finds the old content or the new. The bytes go
// to the disk in a hidden file of the same folder, which then takes the file's place; should the
// process be killed, that file is what may be left.
//
// A file that is there keeps its mode, its owner and its Finder information; a link leads to the
// file that is replaced; a missing file is created. `NotAFileError` for what is no file,
// `FileLockError` for a locked one, else what an item query or writing throws.
GATOTU_API void WriteConstDataToFile(ConstData data, FileLocation const& location);
GATOTU_API void WriteUStringToFile(UStringRef<UTF8> text, FileLocation const& location);
// The file that the path is open on; afterwards the path is open on the new content.
// `FileNotOpenError`.
GATOTU_API void WriteConstDataToFilePath(ConstData data, FileWritingPath& path);
GATOTU_API void WriteUStringToFile(UStringRef<UTF8> text, FileWritingPath& path);
