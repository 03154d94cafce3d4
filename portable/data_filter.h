// Transforms bytes as they pass from an input to an output.
#pragma once

#include "portable/buffer.h"

class GATOTU_API DataFilter {
 public:
  virtual ~DataFilter() = default;

  // Takes from the input and puts to the output as far as there is input and room; both advance.
  virtual void operator()(ConstBuffer& input, Buffer& output) = 0;
  // Puts what is still held back.
  virtual void Flush(Buffer& output);
  virtual bool Flushed() const;

  // The same on plain ranges. Nothing happens without input or without room.
  void operator()(ConstBuffer& input, Data output);
  void operator()(ConstData input, Buffer& output);
  void operator()(ConstData input, Data output);
};
