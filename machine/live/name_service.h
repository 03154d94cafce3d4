// The C library's reentrant questions for users and groups.
#pragma once

#include <cerrno>
#include <string>
#include <vector>

#include "machine/fact.h"
#include "machine/live/root.h"

namespace machine::live {

// One text of a record: `ask(record, buffer, found)` until the buffer suffices.
template <typename Record, typename Ask>
Fact<std::string> AskNameService(char const* source, char* Record::*text, Ask&& ask) {
  constexpr std::size_t kLargest = std::size_t{1} << 20;
  int error = ERANGE;
  for (std::size_t size = 1024; error == ERANGE && size <= kLargest; size *= 4) {
    Record record;
    Record* found = nullptr;
    std::vector<char> buffer(size);
    error = ask(record, buffer, found);
    if (error == 0 && found != nullptr) {
      std::string answer = found->*text;
      Announce(source, Outcome::kAnswered, answer.size());
      return answer;
    }
  }
  return AnnounceError(error == 0 ? ENOENT : error, source);
}

}  // namespace machine::live
