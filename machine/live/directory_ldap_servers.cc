// Which of several servers is asked first.
#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>

#include "machine/live/directory_ldap_library.h"
#include "machine/never_destroyed.h"

namespace machine::live {
namespace {

// By their URIs, as settings have them: few in the life of a process.
struct Silences {
  std::mutex guard;
  std::map<std::string, std::uint64_t> numbers;  // the later, the higher
  std::uint64_t last = 0;
};

Silences& TheSilences() {
  static NeverDestroyed<Silences> silences;
  return *silences;
}

}  // namespace

std::vector<std::string> WithSilentOnesLast(std::vector<std::string> uris) {
  Silences& silences = TheSilences();
  std::lock_guard lock(silences.guard);
  std::ranges::stable_sort(uris, {}, [&silences](std::string const& uri) {
    auto const found = silences.numbers.find(uri);
    return found == silences.numbers.end() ? 0 : found->second;
  });
  return uris;
}

void NoteSilence(std::string const& uri) {
  Silences& silences = TheSilences();
  std::lock_guard lock(silences.guard);
  silences.numbers[uri] = ++silences.last;
}

void NoteAnswer(std::string const& uri) {
  Silences& silences = TheSilences();
  std::lock_guard lock(silences.guard);
  silences.numbers.erase(uri);
}

}  // namespace machine::live
