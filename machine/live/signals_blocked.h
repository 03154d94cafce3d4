// Threads that are started while this lives take no signals: those are for the threads that expect
// them, whose calls they end.
#pragma once

#include <csignal>

namespace machine::live {

class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(SignalsBlocked const&) = delete;
  SignalsBlocked& operator=(SignalsBlocked const&) = delete;

 private:
  sigset_t before_;
};

}  // namespace machine::live
