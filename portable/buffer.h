// Cursors over byte ranges, and what holds the range a cursor runs over. Writing never allocates:
// what does not fit is cut off, or refused where a single byte is put.
#pragma once

#include "portable/const_data.h"

// A range whose start advances as bytes are read.
class ConstBuffer : public ConstData {
 public:
  constexpr ConstBuffer() = default;
  constexpr explicit ConstBuffer(ConstData data) : ConstData(data) {}

  // The next byte; there must be one.
  unsigned char Get() { return *begin++; }
};

// A range whose start advances as bytes are written.
class Buffer : public Data {
 public:
  constexpr Buffer() = default;
  constexpr explicit Buffer(Data data) : Data(data) {}

  // `DataOverflow` when it is full.
  void Put(unsigned char byte) {
    (*this)[0] = byte;
    ++begin;
  }
};

// Copies as much as fits and advances both.
GATOTU_API Buffer& operator<<(Buffer& destination, ConstBuffer& source);
// Without this the cursor would be written to as a plain range, and stay where it is.
GATOTU_API Buffer& operator<<(Buffer& destination, ConstData source);

// An area to write into and how far it has been written. The area outlives it.
class BufferMaster {
 public:
  explicit BufferMaster(Data area) : start_(area.begin), end_(area.end), cursor_(area) {}

  Buffer& Cursor() { return cursor_; }
  ConstData Used() const { return {start_, cursor_.begin}; }
  void Reset() { cursor_ = Buffer(Data(start_, end_)); }

 private:
  unsigned char* start_;
  unsigned char* end_;
  Buffer cursor_;
};

// The same for input.
class ConstBufferMaster {
 public:
  explicit ConstBufferMaster(ConstData input) : cursor_(input) {}

  ConstBuffer& Cursor() { return cursor_; }

 private:
  ConstBuffer cursor_;
};

// A buffer with the area it writes into. The cursor points into the object, so it stays put.
template <unsigned long N>
class BufferOfSize : public BufferMaster {
 public:
  BufferOfSize() : BufferMaster(Data(bytes_, N)) {}
  BufferOfSize(BufferOfSize const&) = delete;
  BufferOfSize& operator=(BufferOfSize const&) = delete;

 private:
  unsigned char bytes_[N];
};
