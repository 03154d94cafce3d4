// Memory that is handed out in order and taken back all at once, down to a mark. Blocks are kept
// for the next use, so that a steady state allocates nothing.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace gatotu {

class Arena {
 public:
  struct Mark {
    std::size_t block = 0;
    std::size_t used = 0;
  };

  // Aligned for any object; of size 0 a unique address too. Throws `std::bad_alloc`.
  void* Allocate(std::size_t size);

  Mark Here() const { return here_; }
  // Takes back everything handed out since the mark was made.
  void Rewind(Mark mark) {
    if (mark.block != here_.block || mark.used != here_.used) TakeBack(mark);
  }
  // Takes back everything, and gives back to the system what exceeds a modest reserve.
  void Reset() {
    Rewind({});
    if (total_ > kReserve) Shrink();
  }

 private:
  struct Block {
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;
  };

  static constexpr std::size_t kReserve = 1024 * 1024;

  void TakeBack(Mark mark);
  void Shrink();
  void AddBlock(std::size_t at_least);

  std::vector<Block> blocks_;
  std::size_t total_ = 0;  // bytes of all blocks
  Mark here_;
};

}  // namespace gatotu
