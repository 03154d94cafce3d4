#include "evaluator/arena.h"

#include <algorithm>
#include <cstddef>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define GATOTU_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GATOTU_POISONS 1
#endif
#endif

#ifdef GATOTU_POISONS
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(0))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(0))
#endif

namespace gatotu {
namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);
constexpr std::size_t kFirstBlock = 16 * 1024;

}  // namespace

void* Arena::Allocate(std::size_t size) {
  if (size > static_cast<std::size_t>(-1) / 4) throw std::bad_alloc();
  std::size_t rounded = std::max(kAlignment, (size + kAlignment - 1) / kAlignment * kAlignment);
  if (blocks_.empty()) AddBlock(rounded);
  while (blocks_[here_.block].size - here_.used < rounded) {
    if (here_.block + 1 == blocks_.size()) AddBlock(rounded);
    here_ = {here_.block + 1, 0};
  }
  std::byte* start = blocks_[here_.block].bytes.get() + here_.used;
  here_.used += rounded;
  ASAN_UNPOISON_MEMORY_REGION(start, size);
  return start;
}

void Arena::AddBlock(std::size_t at_least) {
  std::size_t size = blocks_.empty() ? kFirstBlock : blocks_.back().size * 2;
  size = std::max(std::min(size, kReserve), at_least);
  blocks_.reserve(blocks_.size() + 1);
  blocks_.push_back({std::unique_ptr<std::byte[]>(new std::byte[size]), size});
  total_ += size;
  ASAN_POISON_MEMORY_REGION(blocks_.back().bytes.get(), size);
}

void Arena::TakeBack(Mark mark) {
#ifdef GATOTU_POISONS
  // What is used after it was taken back shows as a fault instead of as odd text.
  for (std::size_t i = mark.block; i < blocks_.size() && i <= here_.block; ++i) {
    std::size_t from = i == mark.block ? mark.used : 0;
    ASAN_POISON_MEMORY_REGION(blocks_[i].bytes.get() + from, blocks_[i].size - from);
  }
#endif
  here_ = mark;
}

void Arena::Shrink() {
  std::size_t kept = 0;
  std::size_t total = 0;
  while (kept < blocks_.size() && total + blocks_[kept].size <= kReserve) {
    total += blocks_[kept++].size;
  }
  for (std::size_t i = kept; i < blocks_.size(); ++i) {
    ASAN_UNPOISON_MEMORY_REGION(blocks_[i].bytes.get(), blocks_[i].size);
  }
  blocks_.resize(kept);
  total_ = total;
}

}  // namespace gatotu
