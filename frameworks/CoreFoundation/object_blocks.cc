#include "frameworks/CoreFoundation/object_blocks.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

// The start of a block, which lies at a multiple of its size, so that any object in it leads here.
struct ObjectBlocks::Block {
  // Objects not yet ended; while the block is open, many more than it can hold.
  std::atomic<std::size_t> left;

  void End(std::size_t count) {
    if (left.fetch_sub(count, std::memory_order_acq_rel) == count) std::free(this);
  }
};

namespace {

constexpr std::size_t kOpen = std::size_t{1} << 32;

// The heap keeps as much before each piece of memory. With it a block is as large as its alignment,
// and one lies right behind the other.
constexpr std::size_t kHeapHead = 2 * sizeof(void*);

}  // namespace

void* ObjectBlocks::TakeElsewhere(std::size_t size) {
  if (size > kLargest) return nullptr;
  if (block_ == nullptr && before_ < kBeforeBlocks) {
    before_ += size;
    return nullptr;
  }
  CloseBlock();
  OpenBlock();
  return Take(size);
}

void ObjectBlocks::OpenBlock() {
  void* memory = nullptr;
  constexpr std::size_t kSize = kBlockSize - kHeapHead;
  if (posix_memalign(&memory, kBlockSize, kSize) != 0) throw std::bad_alloc();
  block_ = ::new (memory) Block{kOpen};
  at_ = reinterpret_cast<unsigned char*>(block_ + 1);
  end_ = static_cast<unsigned char*>(memory) + kSize;
  taken_ = 0;
}

void ObjectBlocks::CloseBlock() {
  if (block_ == nullptr) return;
  block_->End(kOpen - taken_);
  block_ = nullptr;
  at_ = end_ = nullptr;
}

void ObjectBlocks::GiveBack(void* memory) {
  auto const address = reinterpret_cast<std::uintptr_t>(memory);
  reinterpret_cast<Block*>(address & ~(kBlockSize - 1))->End(1);
}
