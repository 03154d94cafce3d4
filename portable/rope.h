// Text put together of pieces that lie elsewhere, without copying until it is written somewhere.
#pragma once

#include <string>

#include "portable/buffer.h"
#include "portable/const_data.h"

// Exactly N pieces. The bytes they point to outlive the rope.
template <unsigned long N>
class ConstDataRope {
 public:
  ConstDataRope(ConstDataRope<N - 1> const& shorter, ConstData last) {
    for (unsigned long i = 0; i < N - 1; ++i) pieces_[i] = shorter.begin()[i];
    pieces_[N - 1] = last;
  }

  ConstData const* begin() const { return pieces_; }
  ConstData const* end() const { return pieces_ + N; }

 private:
  ConstData pieces_[N];
};

template <>
class ConstDataRope<1> {
 public:
  explicit ConstDataRope(ConstData piece) : piece_(piece) {}

  ConstData const* begin() const { return &piece_; }
  ConstData const* end() const { return &piece_ + 1; }

 private:
  ConstData piece_;
};

inline ConstDataRope<2> operator+(ConstData first, ConstData second) {
  return {ConstDataRope<1>(first), second};
}

template <unsigned long N>
ConstDataRope<N + 1> operator+(ConstDataRope<N> const& rope, ConstData piece) {
  return {rope, piece};
}

// Any rope, seen from outside. It outlives the view.
class ConstDataRopeReference {
 public:
  template <unsigned long N>
  ConstDataRopeReference(ConstDataRope<N> const& rope)  // NOLINT(google-explicit-constructor)
      : begin_(rope.begin()), end_(rope.end()) {}

  ConstData const* begin() const { return begin_; }
  ConstData const* end() const { return end_; }

 private:
  ConstData const* begin_;
  ConstData const* end_;
};

GATOTU_API unsigned long TotalLength(ConstDataRopeReference rope);
GATOTU_API std::string MakeString(ConstDataRopeReference rope);

// The pieces in order, as far as they fit; the rest of the destination, or the cursor advanced.
GATOTU_API Data operator<<(Data destination, ConstDataRopeReference rope);
GATOTU_API Buffer& operator<<(Buffer& destination, ConstDataRopeReference rope);
