#include "portable/file_errors.h"

#include <cerrno>
#include <cstring>

#include "portable/file_location.h"

struct FileIOError::State {
  int code;
  std::string first_path;
  std::string second_path;
  std::string message;  // made when it is first asked for
};

namespace {

// A location of no file, such as one of the web, has none; its error is to pass all the same.
std::string PathOf(MacintoshPlatform::FileLocation const& location) {
  try {
    return location.IsEmpty() ? std::string() : location.POSIXPath();
  } catch (MacintoshPlatform::FullPathFailed const&) {
    return {};
  }
}

}  // namespace

FileIOError::FileIOError(int code) : FileIOError(ConstData(), ConstData(), code) {}

FileIOError::FileIOError(ConstData path, int code) : FileIOError(path, ConstData(), code) {}

FileIOError::FileIOError(ConstData first_path, ConstData second_path, int code)
    : state_(std::make_shared<State>(
          State{code, MakeString(first_path), MakeString(second_path), std::string()})) {}

FileIOError::FileIOError(FileLocation const& location, int code)
    : FileIOError(location.Platform(), code) {}

FileIOError::FileIOError(FileLocation const& first, FileLocation const& second, int code)
    : FileIOError(first.Platform(), second.Platform(), code) {}

FileIOError::FileIOError(MacintoshPlatform::FileLocation const& location, int code)
    : FileIOError(ConstData(PathOf(location)), code) {}

FileIOError::FileIOError(MacintoshPlatform::FileLocation const& first,
                         MacintoshPlatform::FileLocation const& second, int code)
    : FileIOError(ConstData(PathOf(first)), ConstData(PathOf(second)), code) {}

int FileIOError::GetCode() const { return state_->code; }
std::string const& FileIOError::FirstPath() const { return state_->first_path; }
std::string const& FileIOError::SecondPath() const { return state_->second_path; }

std::string FileIOError::MakeErrorMessage() const {
  std::string message = "File error \"";
  message.append(typeid(*this).name()).append("\"");
  if (!FirstPath().empty()) message.append(" on \"").append(FirstPath()).append("\"");
  if (!SecondPath().empty()) message.append(" and \"").append(SecondPath()).append("\"");
  if (GetCode() != 0) message.append(": ").append(MakeErrorString(GetCode()));
  return message;
}

char const* FileIOError::what() const noexcept {
  try {
    if (state_->message.empty()) state_->message = MakeErrorMessage();
    return state_->message.c_str();
  } catch (...) {
    return DebuggableException::what();
  }
}

namespace {

enum Point : unsigned { kQuery = 1, kOpening = 2, kReading = 4, kWriting = 8 };

template <typename Error>
[[noreturn]] void Throw(ConstData path, int code) {
  throw Error(path, code);
}

// Which code means what, and at which points of failure.
struct Meaning {
  long code;
  unsigned points;
  void (*throw_error)(ConstData path, int code);
};

constexpr Meaning kMeanings[] = {
    {-34, kOpening | kWriting, Throw<DiskFullError>},
    {-37, kQuery | kOpening, Throw<BadFileNameError>},
    {-39, kReading | kWriting, Throw<EndOfFileError>},
    {-43, kQuery | kOpening, Throw<FileNotFoundError>},
    {-44, kQuery, Throw<HardwareVolumeLockError>},
    {-45, kQuery | kOpening | kReading | kWriting, Throw<FileLockError>},
    {-46, kQuery, Throw<SoftwareVolumeLockError>},
    {-49, kOpening, Throw<FileBusyError>},
    {-54, kOpening, Throw<FilePermissionError>},
    {-120, kQuery | kOpening, Throw<DirectoryNotFoundError>},
    {-5000, kQuery | kOpening | kReading | kWriting, Throw<FilePermissionError>},
};

template <typename Fallback>
void ThrowAt(Point point, long code, ConstData path) {
  if (code == 0) return;
  for (Meaning const& meaning : kMeanings) {
    if (meaning.code == code && (meaning.points & point) != 0) {
      meaning.throw_error(path, static_cast<int>(code));
    }
  }
  throw Fallback(path, static_cast<int>(code));
}

// The errors that platform codes stand for.
struct SystemError {
  int code;
  int error;
};

constexpr SystemError kSystemErrors[] = {
    {-33, ENOSPC},  {-34, ENOSPC},    {-35, ENODEV},    {-36, EIO},      {-37, EINVAL},
    {-38, EBADF},   {-42, EMFILE},    {-43, ENOENT},    {-44, EROFS},    {-45, EPERM},
    {-46, EROFS},   {-47, ENOTEMPTY}, {-48, EEXIST},    {-49, EBUSY},    {-50, EINVAL},
    {-51, EBADF},   {-54, EACCES},    {-61, EACCES},    {-108, ENOMEM},  {-120, ENOENT},
    {-122, EINVAL}, {-1303, EXDEV},   {-1407, ENOTDIR}, {-5000, EACCES},
};

}  // namespace

void ThrowItemQueryError(long code, ConstData path) { ThrowAt<FileError>(kQuery, code, path); }

void ThrowOpenForReadingError(long code, ConstData path) {
  ThrowAt<FileIOError>(kOpening, code, path);
}

void ThrowReadError(long code, ConstData path) { ThrowAt<FileIOError>(kReading, code, path); }

void ThrowWriteError(long code, ConstData path) { ThrowAt<FileIOError>(kWriting, code, path); }

std::string MakeErrorString(int code) {
  int error = code;
  for (SystemError const& known : kSystemErrors) {
    if (known.code == code) error = known.error;
  }
  char const* const text = error > 0 ? ::strerrordesc_np(error) : nullptr;
  return text != nullptr ? text : std::to_string(code);
}
