// Facts of the machine by four-character Gestalt selector, each read anew at every call.
#pragma once

#include <CoreServices/CoreServices.h>

#include <cstdint>

#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"

// One response, 32 bits without sign.
class MacGestalt {
 public:
  // `NoSuchObject` for a selector that this machine does not define, `OSError` for any other
  // failure.
  explicit MacGestalt(OSType selector);

  std::uint32_t Response() const { return response_; }

  // What the response stands for: the text of a string selector (the bytes are the system's and
  // stay for ever), a whole packed version, or the upper half of one.
  inspector_string String() const;
  inspector_version Version() const;
  inspector_version SimpleVersion() const;

 private:
  std::uint32_t response_;
};

// The world's properties. Sizes are bytes, speeds hertz.
integer gestalt_of(unsigned char const* selector, unsigned long length);
integer phys_ram_of();
integer log_ram_of();
boolean native_processor();
boolean virtual_mem();
inspector_version qd_version_of();
inspector_version rom_version_of();
integer machine_type_of();
integer keyboard_type_of();
integer nubus_map_of();
inspector_version name_registry_of();
integer cpu_speed_of();
inspector_string machine_name_of();
