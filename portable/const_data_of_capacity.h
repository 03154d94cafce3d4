// A copy of up to N bytes that carries its own storage, with a NUL behind them, so that the text is
// also a C string. Plain bytes: it may be copied wherever.
#pragma once

#include <cstdint>

#include "portable/const_data.h"
#include "portable/rope.h"

template <unsigned long N>
class ConstDataOfCapacity {
 public:
  ConstDataOfCapacity() = default;
  // `ConstDataCapacityExceeded` for more than N bytes.
  explicit ConstDataOfCapacity(ConstData source) : length_(Checked(source.Length())) {
    source >> Data(bytes_, N);
    bytes_[length_] = 0;
  }
  explicit ConstDataOfCapacity(ConstDataRopeReference source)
      : length_(Checked(TotalLength(source))) {
    Data(bytes_, N) << source;
    bytes_[length_] = 0;
  }

  operator ConstData() const { return {bytes_, length_}; }  // NOLINT(google-explicit-constructor)
  unsigned long Length() const { return length_; }
  char const* Text() const { return reinterpret_cast<char const*>(bytes_); }

 private:
  static std::uint32_t Checked(unsigned long length) {
    if (length >= N + 1) throw ConstDataCapacityExceeded();
    return static_cast<std::uint32_t>(length);
  }

  std::uint32_t length_ = 0;
  unsigned char bytes_[N + 1] = {};
};
