// Stacks of plain elements of one size. They hand out room; what stands there is the caller's, and
// no destructor is called. An element is aligned as its size allows, up to `max_align_t`.
#pragma once

#include "evaluator/plugin/export.h"
#include "portable/const_data.h"

// Grows by pieces, each twice as large as the one before; elements never move. A piece begins with
// its header, and its elements are placed from its top downwards.
class GATOTU_API StackBase {
 public:
  // The first piece belongs to the caller, outlives the stack and may be empty.
  StackBase(Data initial_piece, unsigned long element_size);
  ~StackBase();
  StackBase(StackBase const&) = delete;
  StackBase& operator=(StackBase const&) = delete;

  unsigned long Count() const { return count_; }
  // The element pushed last.
  void* Top() const { return top_; }

  // Room for one element more, valid until it is popped.
  void* Allocate();
  void Pop() { Pop(1); }
  // All there are, if `count` is not less.
  void Pop(unsigned long count);
  void PopAll();

 private:
  struct Piece {
    unsigned char* start;  // of the elements
    unsigned char* end;
    Piece* previous;
  };

  unsigned long RoomIn(Piece const& piece) const {
    return static_cast<unsigned long>(piece.end - piece.start) / element_size_;
  }
  unsigned char* LowestIn(Piece const& piece) const {
    return piece.end - RoomIn(piece) * element_size_;
  }
  static Piece* MakePiece(Data area, Piece* previous);
  void AddPiece();
  // Keeps the current, empty piece as the spare and goes back to the one before, which is full.
  void ReleasePiece();
  bool CanReleasePiece() const;
  static void FreePiece(Piece* piece);

  unsigned long element_size_;
  unsigned long count_ = 0;
  Piece* current_;
  Piece* spare_ = nullptr;
  unsigned char* top_;
  Piece* const initial_;  // the caller's; null if too small for a header
};

// The same in one area of the caller's: as many elements as it has room for, aligned as it is.
class GATOTU_API FiniteStackBase {
 public:
  FiniteStackBase(void* area, unsigned long size, unsigned long element_size);

  unsigned long Count() const { return count_; }
  void* Top() const { return top_; }

  // Room for one element, of which `size` bytes will be used. Throws `StackFull` when there is no
  // room, or `size` is more than an element.
  void* Allocate(unsigned long size);
  // The element must be the one allocated last.
  void Release(void* element);
  void Pop(unsigned long count);

 private:
  unsigned char* start_;
  unsigned long element_size_;
  unsigned long count_ = 0;
  unsigned char* top_;
};
