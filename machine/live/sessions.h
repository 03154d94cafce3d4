// The sessions of a Linux machine, by its login service. A recorded tree has none.
#pragma once

#include "machine/live/root.h"
#include "machine/sessions.h"

namespace machine::live {

class Sessions final : public SessionSource {
 public:
  explicit Sessions(Root const& root) : root_(root) {}
  Fact<RecordDictionary> ConsoleUser() const override;

 private:
  Root const& root_;
};

}  // namespace machine::live
