#include "portable/wildcard.h"

#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

// Worked out from the name's end: `matches[p]` says whether the rest of the name matches the
// pattern from its byte p on, and `skips[p]` whether it does after the `*` at p has passed over
// some units. A `*` that meets a unit `*` stands for that unit alone, so the usual way of going
// back to the last `*` does not serve.
bool MatchesWildCardInternal(UniChar const* units, unsigned long count, char const* pattern) {
  std::string_view const bytes(pattern);
  std::size_t const size = bytes.size();
  std::vector<char> matches(size + 1, false);
  matches[size] = true;
  for (std::size_t p = size; p-- > 0;) matches[p] = bytes[p] == '*' && matches[p + 1];
  std::vector<char> skips = matches;

  for (unsigned long i = count; i-- > 0;) {
    bool next_matches = matches[size];  // the unit after this one, the byte after p
    matches[size] = false;
    for (std::size_t p = size; p-- > 0;) {
      if (bytes[p] == '*') skips[p] = p + 1 == size || matches[p + 1] || skips[p];
      bool const is_same = bytes[p] == '?' || static_cast<unsigned char>(bytes[p]) == units[i];
      bool const is_match = is_same ? next_matches : bytes[p] == '*' && skips[p];
      next_matches = std::exchange(matches[p], is_match);
    }
  }
  return matches[0];
}

char const* MakeFileLocationWithWildcardUnix(char const* path, ConstData& directoryPart) {
  char const* const slash = std::strrchr(path, '/');
  if (slash == nullptr || std::strpbrk(slash, "*?") == nullptr) {
    directoryPart = ConstData(path);
    return nullptr;
  }
  directoryPart = ConstData(path, slash);
  return slash + 1;
}
