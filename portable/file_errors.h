// What the file functions throw, and which platform code stands for what.
#pragma once

#include <memory>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "portable/const_data.h"

class FileLocation;
namespace MacintoshPlatform {
class FileLocation;
}

// The base of them all. Copies share what they carry. A location stands for its POSIX path, empty
// where it has none.
class GATOTU_API FileIOError : public DebuggableException {
 public:
  explicit FileIOError(int code = 0);
  explicit FileIOError(ConstData path, int code = 0);
  FileIOError(ConstData first_path, ConstData second_path, int code);
  explicit FileIOError(FileLocation const& location, int code = 0);
  FileIOError(FileLocation const& first, FileLocation const& second, int code);
  explicit FileIOError(MacintoshPlatform::FileLocation const& location, int code = 0);
  FileIOError(MacintoshPlatform::FileLocation const& first,
              MacintoshPlatform::FileLocation const& second, int code);

  // The platform's code; 0 when there is none.
  int GetCode() const;
  std::string const& FirstPath() const;
  std::string const& SecondPath() const;

  // `File error "17FileNotFoundError" on "/tmp/x" and "/tmp/y": No such file or directory`, of
  // which everything but the class may be missing. The class is in its encoded form.
  std::string MakeErrorMessage() const;
  // The same text.
  char const* what() const noexcept override;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

#define GATOTU_FILE_ERROR(Name, Base)   \
  class GATOTU_API Name : public Base { \
   public:                              \
    using Base::Base;                   \
  }

GATOTU_FILE_ERROR(FileError, FileIOError);               // a query failed with another code
GATOTU_FILE_ERROR(FileItemError, FileIOError);           // the snapshot that is needed is invalid
GATOTU_FILE_ERROR(FileNotFoundError, FileIOError);       // -43
GATOTU_FILE_ERROR(DirectoryNotFoundError, FileIOError);  // -120
GATOTU_FILE_ERROR(BadFileNameError, FileIOError);        // -37
GATOTU_FILE_ERROR(FileLockError, FileIOError);           // -45
GATOTU_FILE_ERROR(FilePermissionError, FileIOError);     // -5000, and -54 on opening
GATOTU_FILE_ERROR(FileBusyError, FileIOError);           // -49
GATOTU_FILE_ERROR(DiskFullError, FileIOError);           // -34
GATOTU_FILE_ERROR(EndOfFileError, FileIOError);          // -39
GATOTU_FILE_ERROR(NotAFileError, FileIOError);           // a folder where a file is to be read
GATOTU_FILE_ERROR(FileNotOpenError, FileIOError);        // the length of what is not open
GATOTU_FILE_ERROR(FileAccessError, FileIOError);
GATOTU_FILE_ERROR(VolumeLockError, FileAccessError);
GATOTU_FILE_ERROR(HardwareVolumeLockError, VolumeLockError);  // -44
GATOTU_FILE_ERROR(SoftwareVolumeLockError, VolumeLockError);  // -46

GATOTU_FILE_ERROR(FileExists, FileIOError);         // a file is to come where something stands
GATOTU_FILE_ERROR(DirectoryExists, FileIOError);    // a folder is to come where something stands
GATOTU_FILE_ERROR(DirectoryNotEmpty, FileIOError);  // a folder to be deleted has contents
GATOTU_FILE_ERROR(FileCreateFailed, FileIOError);
GATOTU_FILE_ERROR(DirectoryCreateFailed, FileIOError);
GATOTU_FILE_ERROR(FileDeleteFailed, FileIOError);
GATOTU_FILE_ERROR(DirectoryDeleteFailed, FileIOError);
GATOTU_FILE_ERROR(FileCopyFailed, FileIOError);
GATOTU_FILE_ERROR(FileMoveFailed, FileIOError);
GATOTU_FILE_ERROR(FileFoundError, FileIOError);  // no folder where a folder is to be
GATOTU_FILE_ERROR(CreateUniqueFileLocationFailed, FileIOError);

GATOTU_FILE_ERROR(EmptyFileLocationError, FileIOError);
GATOTU_FILE_ERROR(RootHasNoParent, FileIOError);
GATOTU_FILE_ERROR(IllegalFileName, FileIOError);        // fails the rule of its operation
GATOTU_FILE_ERROR(IllegalFileNameLength, FileIOError);  // more than 255 units
GATOTU_FILE_ERROR(PrefixDoesNotMatch, FileIOError);
GATOTU_FILE_ERROR(ExtensionDoesNotMatch, FileIOError);

namespace MacintoshPlatform {
GATOTU_FILE_ERROR(FullPathFailed, FileIOError);  // a path does not fit its buffer
GATOTU_FILE_ERROR(InvalidParentURL, FileIOError);
GATOTU_FILE_ERROR(FileLoopFailed, FileIOError);
GATOTU_FILE_ERROR(CannotCreateSpecialFolder, FileIOError);  // or not found
}  // namespace MacintoshPlatform

#undef GATOTU_FILE_ERROR

// What a platform code means at each of the four points of failure; 0 throws nothing. The path,
// where it is known, is the one that the error tells.
GATOTU_API void ThrowItemQueryError(long code, ConstData path = {});
GATOTU_API void ThrowOpenForReadingError(long code, ConstData path = {});
GATOTU_API void ThrowReadError(long code, ConstData path = {});
GATOTU_API void ThrowWriteError(long code, ConstData path = {});

// The system's text for the error that the code stands for, else the code's number.
GATOTU_API std::string MakeErrorString(int code);
