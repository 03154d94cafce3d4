// Every source that a machine consults is announced to the observer of the thread that asked, so
// that an answer can show what it rests on and an absence can say why.
#pragma once

#include <cstdint>
#include <string_view>

#include "machine/export.h"

namespace machine {

// What came of consulting a source: an answer, or the reason there is none.
enum class Outcome {
  kAnswered,
  kAbsent,             // the source or the entry does not exist
  kNotSupported,       // this kind of machine has no such source
  kPermissionRefused,  // it exists and may not be read
  kMalformed,          // it was read and could not be understood
  kTimedOut,           // it did not answer within its time
};

// A short phrase such as "permission refused"; "answered" for `kAnswered`.
MACHINE_API std::string_view NameOf(Outcome outcome);

// `source` is a path, attribute, entry or call and lives during the announcement only. `bytes` is
// how much was read, 0 where that has no meaning.
struct Announcement {
  std::string_view source;
  Outcome outcome = Outcome::kAnswered;
  std::uint64_t bytes = 0;
};

class SourceObserver {
 public:
  virtual ~SourceObserver() = default;
  virtual void Consulted(Announcement const& announcement) = 0;
};

// Sets the calling thread's observer (null: none) and returns the one before. The observer is
// borrowed: the caller takes it back before it dies.
MACHINE_API SourceObserver* SetSourceObserver(SourceObserver* observer);

// The calling thread's observer, or null. Sources ask this before they spell out what they read.
MACHINE_API SourceObserver* CurrentSourceObserver();

// As long as this lives the thread announces to nobody: for what is asked on the way to an answer.
class Unobserved {
 public:
  Unobserved() : before_(SetSourceObserver(nullptr)) {}
  ~Unobserved() { SetSourceObserver(before_); }
  Unobserved(Unobserved const&) = delete;
  Unobserved& operator=(Unobserved const&) = delete;

 private:
  SourceObserver* const before_;
};

inline void Announce(std::string_view source, Outcome outcome, std::uint64_t bytes = 0) {
  if (SourceObserver* observer = CurrentSourceObserver(); observer != nullptr) [[unlikely]] {
    observer->Consulted({source, outcome, bytes});
  }
}

}  // namespace machine
