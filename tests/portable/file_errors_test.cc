#include "portable/file_errors.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "portable/core_foundation/urls.h"
#include "portable/file_location.h"

namespace {

// "" when nothing is thrown, else the class in its encoded form.
std::string Thrown(void (*fail)(long, ConstData), long code) {
  try {
    fail(code, "/x");
    return "";
  } catch (FileIOError const& error) {
    EXPECT_EQ(error.GetCode(), code);
    EXPECT_EQ(error.FirstPath(), "/x");
    return typeid(error).name();
  }
}

TEST(FileErrors, FollowFromCodeAndPointOfFailure) {
  constexpr char kQuery[] = "9FileError", kOther[] = "11FileIOError",
                 kRefused[] = "19FilePermissionError";
  struct {
    long code;
    char const *query, *opening, *reading, *writing;
  } const rows[] = {
      {0, "", "", "", ""},
      {-34, kQuery, "13DiskFullError", kOther, "13DiskFullError"},
      {-37, "16BadFileNameError", "16BadFileNameError", kOther, kOther},
      {-39, kQuery, kOther, "14EndOfFileError", "14EndOfFileError"},
      {-45, "13FileLockError", "13FileLockError", "13FileLockError", "13FileLockError"},
      {-46, "23SoftwareVolumeLockError", kOther, kOther, kOther},
      {-49, kQuery, "13FileBusyError", kOther, kOther},
      {-54, kQuery, kRefused, kOther, kOther},
      {-5000, kRefused, kRefused, kRefused, kRefused},
      {-120, "22DirectoryNotFoundError", "22DirectoryNotFoundError", kOther, kOther},
      {-1, kQuery, kOther, kOther, kOther}};
  for (auto const& row : rows) {
    SCOPED_TRACE(row.code);
    EXPECT_EQ(Thrown(ThrowItemQueryError, row.code), row.query);
    EXPECT_EQ(Thrown(ThrowOpenForReadingError, row.code), row.opening);
    EXPECT_EQ(Thrown(ThrowReadError, row.code), row.reading);
    EXPECT_EQ(Thrown(ThrowWriteError, row.code), row.writing);
  }
  static_assert(std::is_base_of_v<FileAccessError, VolumeLockError> &&
                std::is_base_of_v<VolumeLockError, HardwareVolumeLockError> &&
                std::is_base_of_v<VolumeLockError, SoftwareVolumeLockError>);
}

TEST(FileErrors, SayWhatAndWhere) {
  FileLocation const x = MakeFileLocation("/tmp/x"), y = MakeFileLocation("/tmp/y");
  auto const expect = [](FileIOError const& error, char const* text) {
    EXPECT_EQ(error.MakeErrorMessage(), text);
    EXPECT_STREQ(error.what(), text);
  };
  expect(FileNotFoundError(x, -43),
         "File error \"17FileNotFoundError\" on \"/tmp/x\": No such file or directory");
  expect(FileCopyFailed(x, y, -34),
         "File error \"14FileCopyFailed\" on \"/tmp/x\" and \"/tmp/y\": No space left on device");
  expect(FileMoveFailed(ConstData(), ConstData("/b"), 0),
         "File error \"14FileMoveFailed\" and \"/b\"");
  expect(FileMoveFailed(x, -1303),
         "File error \"14FileMoveFailed\" on \"/tmp/x\": Invalid cross-device link");
  expect(FileError(-9999), "File error \"9FileError\": -9999");
  expect(FileIOError(ConstData("/a"), 0), "File error \"11FileIOError\" on \"/a\"");
  expect(EmptyFileLocationError(FileLocation()), "File error \"22EmptyFileLocationError\"");
  expect(MacintoshPlatform::FullPathFailed(x.Platform()),
         "File error \"N17MacintoshPlatform14FullPathFailedE\" on \"/tmp/x\"");
  MacintoshPlatform::FileLocation const web(MakeURL(CFSTR("http://web")));
  expect(FileItemError(web, 0), "File error \"13FileItemError\"");
  EXPECT_THROW(web.ParentURL(), MacintoshPlatform::InvalidParentURL);
  CreateUniqueFileLocationFailed const failed(0);
  EXPECT_STREQ(static_cast<DebuggableException const&>(failed).what(),
               "File error \"30CreateUniqueFileLocationFailed\"");
}

}  // namespace
