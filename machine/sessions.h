// Who is logged on, as the window server of a Macintosh publishes it. Other machines tell the same
// in its form.
#pragma once

#include "machine/capture/record.h"
#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

class MACHINE_API SessionSource {
 public:
  virtual ~SessionSource() = default;

  // "SessionInfo", an array with a dictionary for each session, and of the user in front of the
  // console "Name", "UID" and "GID", without which nobody is there. A capture may hold anything
  // else instead.
  virtual Fact<RecordDictionary> ConsoleUser() const;
};

}  // namespace machine
