// Which sources an answer rests on: the machine's announcements, kept in order for the evaluator
// to refer to and for the command to show.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "evaluator/evidence.h"
#include "machine/observer.h"

namespace gatotu::host {

struct Consultation {
  std::string source;
  machine::Outcome outcome = machine::Outcome::kAnswered;
  std::uint64_t bytes = 0;
};

class EvidenceLog final : public EvidenceRecorder, public machine::SourceObserver {
 public:
  enum class Keep {
    kFailures,  // enough to say why there is no such object
    kAll,
  };

  // Becomes the calling thread's observer until its end; made and ended on that thread.
  explicit EvidenceLog(Keep keep);
  ~EvidenceLog() override;
  EvidenceLog(EvidenceLog const&) = delete;
  EvidenceLog& operator=(EvidenceLog const&) = delete;

  // Each once, in the order of the first consultation.
  std::vector<Consultation> Consultations() const;
  // Of the announcements [begin, end), what did not answer: "SOURCE: permission refused".
  std::vector<std::string> Reasons(std::size_t begin, std::size_t end) const;
  void Clear();

  std::size_t Position() const override { return log_.size(); }
  std::shared_ptr<void const> Copy(std::size_t begin, std::size_t end) const override;
  void Announce(void const* copy) override;

  void Consulted(machine::Announcement const& announcement) override;

 private:
  Keep keep_;
  std::vector<Consultation> log_;
  machine::SourceObserver* before_;
};

}  // namespace gatotu::host
