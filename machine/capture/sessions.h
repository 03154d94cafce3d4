// The sessions of a capture, as they were published.
#pragma once

#include "machine/capture/facts.h"
#include "machine/sessions.h"

namespace machine::capture {

class Sessions final : public SessionSource {
 public:
  explicit Sessions(Facts const& facts) : facts_(facts) {}
  Fact<RecordDictionary> ConsoleUser() const override;

 private:
  Facts const& facts_;
};

}  // namespace machine::capture
