#include "host/interruption.h"

#include <sys/signalfd.h>
#include <unistd.h>

namespace gatotu::host {
namespace {

// A worker whose evaluation hangs takes half of it.
constexpr std::chrono::seconds kMoment{1};

}  // namespace

Interruption::Interruption() {
  sigset_t interrupt;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  ::sigprocmask(SIG_BLOCK, &interrupt, &before_);
  descriptor_ = machine::FileDescriptor(::signalfd(-1, &interrupt, SFD_CLOEXEC | SFD_NONBLOCK));
  // Without it an interrupt ends the command at once, and the workers with it.
  if (!descriptor_.is_open()) ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

Interruption::~Interruption() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }

void Interruption::Look() {
  signalfd_siginfo signal;
  if (::read(descriptor_.number(), &signal, sizeof signal) != sizeof signal) return;
  end_ = Clock::now() + (HasCome() ? std::chrono::seconds(0) : kMoment);
}

}  // namespace gatotu::host
