// Inspectors that misbehave, for the command to survive.
#include <unistd.h>

#include <cstddef>
#include <stdexcept>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"

namespace {

struct NamedNothing {};

bool Sleep(void*, void const*, void const*, void*, void const*) {
  // Signals do not end it, like a call that hangs in the kernel.
  for (;;) ::pause();
}

bool Throw(void*, void const* parameter, void const*, void*, void const*) {
  switch (*static_cast<integer const*>(parameter)) {
    case 0:
      throw 7;
    case 1:
      throw std::runtime_error("out of luck");
    case 2:
      throw OSError(-43);
    case 3:
      throw NamedNothing();
    case 4:
      throw std::bad_alloc();
    default:
      throw NoSuchObject();
  }
}

class Registration {
 public:
  Registration(char const* name, char const* parameter, InspectorGet get) {
    Register_Property(block_, sizeof block_, name, "", parameter, "", "integer", get, nullptr,
                      nullptr);
  }
  ~Registration() { Unregister_Property(block_); }

 private:
  alignas(std::max_align_t) unsigned char block_[128];
};

Registration sleeping_thing("sleeping thing", "", &Sleep);
Registration throwing_thing("throwing thing", "integer", &Throw);

}  // namespace
