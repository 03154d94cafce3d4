// A range of bytes that is text in some Unicode encoding.
#pragma once

#include "portable/const_data.h"

class UTF8;

// `CFStringCreateError` for bytes that are no text in the encoding.
template <class Encoding>
void RequireUnicode(ConstData bytes);
template <>
GATOTU_API void RequireUnicode<UTF8>(ConstData bytes);

// Borrows the bytes and has looked at them: making one throws `CFStringCreateError` for what is no
// text.
template <class Encoding>
class UStringRef {
 public:
  explicit UStringRef(ConstData bytes) : bytes_(bytes) { RequireUnicode<Encoding>(bytes); }
  ConstData Bytes() const { return bytes_; }

 private:
  ConstData bytes_;
};
