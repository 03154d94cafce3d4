// A range of bytes that is text in some Unicode encoding.
#pragma once

#include "portable/const_data.h"

class UTF8;

template <class Encoding>
class UStringRef {
 public:
  explicit UStringRef(ConstData bytes) : bytes_(bytes) {}
  ConstData Bytes() const { return bytes_; }

 private:
  ConstData bytes_;
};
