// Bytes that are passed on to whoever reads the command's output. Unlike `Output` it gathers
// nothing, and an interrupt reaches it while a reader takes its time.
#pragma once

#include <string_view>

#include "host/interruption.h"

namespace gatotu::host {

class PassedOutput {
 public:
  // `descriptor` stays the caller's.
  PassedOutput(int descriptor, Interruption& interruption)
      : descriptor_(descriptor), interruption_(interruption) {}

  void Write(std::string_view bytes);

  int Descriptor() const { return descriptor_; }
  // Further bytes are dropped: nobody reads any more, they cannot be written, or it took too long
  // after an interrupt.
  bool IsBroken() const { return error_ != 0; }
  int Error() const { return error_; }
  void NoteReaderIsGone();

 private:
  bool WaitForRoom();

  int descriptor_;
  Interruption& interruption_;
  int error_ = 0;
};

}  // namespace gatotu::host
