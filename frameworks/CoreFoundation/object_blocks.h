// Memory for the many small objects that a reader makes in a row. They lie side by side in blocks,
// which spares the room and the time that the heap takes for each of them. Objects end one by one,
// in any order and on any thread; a block is free with the last of its objects. What outlives all
// others so keeps up to 16 KiB.
//
// Free blocks wait in a reserve for the next list. It holds no more than the last lists took, and
// 32 MiB at most. Through the heap they would go back to the system after each larger list, and
// fetching pages anew costs as much as reading.
#pragma once

#include <cstddef>

class ObjectBlocks {
 public:
  ObjectBlocks() = default;
  ~ObjectBlocks();
  ObjectBlocks(ObjectBlocks const&) = delete;
  ObjectBlocks& operator=(ObjectBlocks const&) = delete;

  // Memory for one object, aligned for words. Null for what is better kept by itself: objects of
  // some size, and the first ones, so that a list of a few objects takes no block.
  void* Take(std::size_t size) {
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (size > static_cast<std::size_t>(end_ - at_)) return TakeElsewhere(size);
    void* const memory = at_;
    at_ += size;
    ++taken_;
    return memory;
  }

  // Takes back what `Take` of any blocks gave, which holds an object no more.
  static void GiveBack(void* memory);

 private:
  static constexpr std::size_t kAlignment = alignof(void*);
  static constexpr std::size_t kBlockSize = 16'384;
  // Bounds what is left unused at the end of a block.
  static constexpr std::size_t kLargest = kBlockSize / 32;
  static constexpr std::size_t kBeforeBlocks = 1'024;

  struct Block;
  class Reserve;
  static Reserve reserve_;

  void* TakeElsewhere(std::size_t size);
  void OpenBlock();
  void CloseBlock();

  Block* block_ = nullptr;
  unsigned char* at_ = nullptr;
  unsigned char* end_ = nullptr;
  std::size_t blocks_ = 0;  // That were opened.
  std::size_t taken_ = 0;   // Objects of this block.
  std::size_t before_ = 0;  // Bytes of the objects before the first block.
};
