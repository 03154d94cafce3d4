// The cyclic redundancy check of ISO 3309 (the one of zip, gzip and PNG), taken piece by piece.
#pragma once

#include <cstdint>

#include "portable/const_data.h"

class GATOTU_API Crc32 {
 public:
  void Add(ConstData data);
  // Of everything added so far; 0 when nothing was.
  std::uint32_t Value() const { return ~state_; }

 private:
  std::uint32_t state_ = 0xFFFFFFFF;
};
