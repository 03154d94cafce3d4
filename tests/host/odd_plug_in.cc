// Inspectors that misbehave, for the command to survive.
#include <unistd.h>

#include <cstddef>
#include <stdexcept>

#include "evaluator/plugin/entry_points.h"

namespace {

struct NamedNothing {};

bool Sleep(void*, void const*, void const*, void*, void const*) {
  // Signals do not end it, like a call that hangs in the kernel.
  for (;;) ::pause();
}

template <class Exception>
bool Throw(void*, void const*, void const*, void*, void const*) {
  throw Exception();
}

struct OutOfLuck : std::runtime_error {
  OutOfLuck() : std::runtime_error("out of luck") {}
};

class Registration {
 public:
  Registration(char const* name, InspectorGet get) {
    Register_Property(block_, sizeof block_, name, "", "", "", "integer", get, nullptr, nullptr);
  }
  ~Registration() { Unregister_Property(block_); }

 private:
  alignas(std::max_align_t) unsigned char block_[128];
};

Registration sleeping_thing("sleeping thing", &Sleep);
Registration unlucky_thing("unlucky thing", &Throw<OutOfLuck>);
Registration foreign_thing("foreign thing", &Throw<NamedNothing>);

}  // namespace
