// The content of a file, read from its start on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "machine/files.h"
#include "portable/file_errors.h"
#include "portable_inspectors/filesystem_object.h"

// More than an inspector takes into memory at once.
class GATOTU_API FileTooLarge : public FileIOError {
 public:
  using FileIOError::FileIOError;
};
inline constexpr std::size_t kMostContentBytes = std::size_t{256} << 20;

// Links are followed. Of a file that shrinks or grows meanwhile, what is there when it is read.
class FileStream {
 public:
  FileStream() = default;  // has no bytes
  // `NoSuchObject` for what is no regular file, does not exist or may not be opened.
  explicit FileStream(file const& source);

  // How many bytes came, 0 at the end. `FileIOError` when reading fails.
  std::size_t Read(void* buffer, std::size_t size);
  // How many bytes the file says it has; 0 for some that the kernel makes up when they are read.
  std::size_t Size() const { return open_ == nullptr ? 0 : open_->Status().bytes; }
  std::string const& Path() const { return path_; }

 private:
  std::string path_;
  std::unique_ptr<machine::OpenFile> open_;
  std::uint64_t offset_ = 0;
};
