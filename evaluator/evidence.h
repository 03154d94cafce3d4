// How the host follows which sources an answer rests on. The evaluator knows nothing of machines:
// it asks the recorder where it stands before and after an inspector ran.
#pragma once

#include <cstddef>
#include <memory>

#include "evaluator/plugin/export.h"

namespace gatotu {

// Announcements of sources in the order in which they were consulted, numbered from 0.
class GATOTU_API EvidenceRecorder {
 public:
  virtual ~EvidenceRecorder() = default;

  // How many announcements there are so far.
  virtual std::size_t Position() const = 0;

  // A copy of the announcements [begin, end), to be announced again when a kept result is used.
  virtual std::shared_ptr<void const> Copy(std::size_t begin, std::size_t end) const = 0;
  virtual void Announce(void const* copy) = 0;
};

}  // namespace gatotu
