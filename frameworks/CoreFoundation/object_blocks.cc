#include "frameworks/CoreFoundation/object_blocks.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

// The start of a block, which lies at a multiple of its size, so that any object in it leads here.
struct ObjectBlocks::Block {
  // Objects not yet ended; while the block is open, many more than it can hold.
  std::atomic<std::size_t> left;
  Block* next;  // In the reserve.

  void End(std::size_t count);
};

class ObjectBlocks::Reserve {
 public:
  // Null when there is none.
  Block* Take() {
    std::lock_guard const lock(mutex_);
    if (first_ == nullptr) return nullptr;
    --count_;
    return std::exchange(first_, first_->next);
  }

  void Keep(Block* block) {
    std::lock_guard const lock(mutex_);
    if (count_ >= most_) return std::free(block);
    ++count_;
    block->next = std::exchange(first_, block);
  }

  // A list has been read for which `count` blocks were opened. One much smaller than those before
  // it lets go of half of what they left.
  void Adapt(std::size_t count) {
    std::lock_guard const lock(mutex_);
    most_ = std::clamp(count, most_ / 2, kMost);
    for (; count_ > most_; --count_) std::free(std::exchange(first_, first_->next));
  }

 private:
  static constexpr std::size_t kMost = (32 << 20) / kBlockSize;

  std::mutex mutex_;
  Block* first_ = nullptr;
  std::size_t count_ = 0, most_ = 0;
};

// Never destroyed, for objects may end after it would be.
constinit ObjectBlocks::Reserve ObjectBlocks::reserve_;

namespace {

constexpr std::size_t kOpen = std::size_t{1} << 32;

// The heap keeps as much before each piece of memory. With it a block is as large as its alignment,
// and one lies right behind the other.
constexpr std::size_t kHeapHead = 2 * sizeof(void*);

}  // namespace

void ObjectBlocks::Block::End(std::size_t count) {
  if (left.fetch_sub(count, std::memory_order_acq_rel) == count) reserve_.Keep(this);
}

ObjectBlocks::~ObjectBlocks() {
  CloseBlock();
  reserve_.Adapt(blocks_);
}

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
  constexpr std::size_t kSize = kBlockSize - kHeapHead;
  void* memory = reserve_.Take();
  if (memory == nullptr && posix_memalign(&memory, kBlockSize, kSize) != 0) throw std::bad_alloc();
  block_ = ::new (memory) Block{kOpen, nullptr};
  at_ = reinterpret_cast<unsigned char*>(block_ + 1);
  end_ = static_cast<unsigned char*>(memory) + kSize;
  ++blocks_;
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
