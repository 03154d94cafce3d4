// The C library's reentrant questions for users and groups.
#pragma once

#include <cerrno>
#include <string>
#include <vector>

#include "machine/fact.h"
#include "machine/live/root.h"

namespace machine::live {

// Hands a record to `take`: `ask(record, buffer, found)` until the buffer suffices, which is kept
// for the next record. The system's number, `ENOENT` when there is no such record.
template <typename Record, typename Take, typename Ask>
int TakeFromNameService(std::vector<char>& buffer, Take&& take, Ask&& ask) {
  constexpr std::size_t kLargest = std::size_t{1} << 20;
  if (buffer.empty()) buffer.resize(1024);
  for (;;) {
    Record record;
    Record* found = nullptr;
    int const error = ask(record, buffer, found);
    if (error == 0 && found == nullptr) return ENOENT;
    if (error == 0) take(*found);
    if (error != ERANGE || buffer.size() == kLargest) return error;
    buffer.resize(buffer.size() * 4);
  }
}

template <typename Record, typename Take, typename Ask>
int TakeFromNameService(Take&& take, Ask&& ask) {
  std::vector<char> buffer;
  return TakeFromNameService<Record>(buffer, take, ask);
}

// One text of a record.
template <typename Record, typename Ask>
Fact<std::string> AskNameService(char const* source, char* Record::*text, Ask&& ask) {
  std::string answer;
  int const error =
      TakeFromNameService<Record>([&](Record const& found) { answer = found.*text; }, ask);
  if (error != 0) return AnnounceError(error, source);
  Announce(source, Outcome::kAnswered, answer.size());
  return answer;
}

}  // namespace machine::live
