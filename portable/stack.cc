#include "portable/stack.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <new>

namespace {

constexpr std::uintptr_t kAlignment = alignof(std::max_align_t);

// The first piece of a stack that was given none is for so many elements.
constexpr unsigned long kFewElements = 8;

unsigned char* AlignDown(unsigned char* address) {
  return address - reinterpret_cast<std::uintptr_t>(address) % kAlignment;
}

unsigned char* AlignUp(unsigned char* address) {
  return address + (0 - reinterpret_cast<std::uintptr_t>(address)) % kAlignment;
}

}  // namespace

StackBase::StackBase(Data initial_piece, unsigned long element_size)
    : element_size_(element_size),
      current_(MakePiece(initial_piece, nullptr)),
      top_(current_ == nullptr ? nullptr : current_->end),
      initial_(current_) {
  assert(element_size > 0);
}

StackBase::~StackBase() {
  PopAll();
  if (current_ != initial_) FreePiece(current_);
  FreePiece(spare_);
}

void* StackBase::Allocate() {
  if (current_ == nullptr || top_ == LowestIn(*current_)) AddPiece();
  top_ -= element_size_;
  ++count_;
  return top_;
}

void StackBase::Pop(unsigned long count) {
  if (count >= count_) return PopAll();
  count_ -= count;
  while (count != 0) {
    auto const here = static_cast<unsigned long>(current_->end - top_) / element_size_;
    unsigned long const popped = std::min(count, here);
    top_ += popped * element_size_;
    count -= popped;
    if (popped == here) ReleasePiece();
  }
}

void StackBase::PopAll() {
  count_ = 0;
  if (current_ == nullptr) return;
  while (CanReleasePiece()) ReleasePiece();
  top_ = current_->end;
}

StackBase::Piece* StackBase::MakePiece(Data area, Piece* previous) {
  // Null has nothing to align.
  if (area.IsEmpty()) return nullptr;
  unsigned char* const header = AlignUp(area.begin);
  unsigned char* const end = AlignDown(area.end);
  if (end < header || static_cast<unsigned long>(end - header) < sizeof(Piece)) return nullptr;
  return new (header) Piece{header + sizeof(Piece), end, previous};
}

void StackBase::AddPiece() {
  if (spare_ != nullptr) {
    spare_->previous = current_;
    current_ = spare_;
    spare_ = nullptr;
  } else {
    unsigned long const doubled =
        current_ == nullptr ? 0 : 2 * static_cast<unsigned long>(current_->end - current_->start);
    unsigned long const room = std::max(doubled, kFewElements * element_size_);
    // The end is aligned downwards, for which there must be bytes to spare.
    unsigned long const size = sizeof(Piece) + room + kAlignment;
    auto* const block = static_cast<unsigned char*>(::operator new(size));
    current_ = MakePiece(Data(block, size), current_);
  }
  top_ = current_->end;
}

bool StackBase::CanReleasePiece() const { return current_->previous != nullptr; }

void StackBase::ReleasePiece() {
  if (!CanReleasePiece()) return;
  Piece* const emptied = current_;
  current_ = emptied->previous;
  top_ = LowestIn(*current_);
  FreePiece(spare_);
  spare_ = emptied;
}

void StackBase::FreePiece(Piece* piece) { ::operator delete(piece); }

FiniteStackBase::FiniteStackBase(void* area, unsigned long size, unsigned long element_size)
    : start_(static_cast<unsigned char*>(area)),
      element_size_(element_size),
      top_(start_ + size / element_size * element_size) {
  assert(element_size > 0);
}

void* FiniteStackBase::Allocate(unsigned long size) {
  if (size > element_size_ || top_ == start_) throw StackFull();
  top_ -= element_size_;
  ++count_;
  return top_;
}

void FiniteStackBase::Release([[maybe_unused]] void* element) {
  assert(element == top_);
  Pop(1);
}

void FiniteStackBase::Pop(unsigned long count) {
  assert(count <= count_);
  top_ += count * element_size_;
  count_ -= count;
}
