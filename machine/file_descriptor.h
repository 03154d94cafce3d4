// An open file that is closed by its owner's end.
#pragma once

#include <unistd.h>

#include <utility>

namespace machine {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() {
    if (number_ >= 0) ::close(number_);
  }

  bool is_open() const { return number_ >= 0; }
  int number() const { return number_; }
  // To the caller, who closes it.
  int Release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

}  // namespace machine
