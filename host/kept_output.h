// What a worker wrote and nobody has passed on yet, given out in whole records. A little of it is
// kept in memory; more than that in a file without a name, so that neither the worker nor our
// memory pays for its having to wait for its turn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "machine/file_descriptor.h"

namespace gatotu::host {

class KeptOutput {
 public:
  enum class Records {
    kLines,
    kCsv,  // a line feed between quotes ends none
  };
  explicit KeptOutput(Records records) : records_(records) {}

  // False, with `errno`, when there is no room for it.
  bool Append(std::string_view bytes);

  // The next bytes of whole records, some 64 KiB at a time; empty when there are none. False, with
  // `errno`, when they cannot be read back.
  bool Take(std::string& bytes);

  // The worker ended: what it left of a record is dropped, or as good as a whole one.
  void DropRest();
  void CompleteRest() { whole_ = size_; }
  // Nobody will take any of it.
  void DropAll();

  std::uint64_t Waiting() const { return size_ - taken_; }
  bool HasRecords() const { return whole_ > taken_; }

 private:
  void FindRecords(std::string_view bytes);
  bool MoveToFile();
  bool WriteToFile(std::string_view bytes, std::uint64_t at);
  bool ReadFromFile(std::string& bytes, std::uint64_t at) const;
  bool Forget();

  Records records_;
  bool is_quoted_ = false;
  // Counted from the last time that nothing was kept.
  std::uint64_t size_ = 0;
  std::uint64_t whole_ = 0;  // up to here there are whole records
  std::uint64_t taken_ = 0;
  std::string memory_;  // all that is kept, unless there is a file
  machine::FileDescriptor file_;
};

}  // namespace gatotu::host
