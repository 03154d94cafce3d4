#include "inspectors/system/bsd_process_list.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kAllProcesses[] = {BSD::CTL_KERN, BSD::KERN_PROC, BSD::KERN_PROC_ALL};

// Checked in every build: what calls this with a list in hand would lose it.
void Require(bool condition, char const* text, unsigned line) {
  if (condition) return;
  std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", "BSDProcessList", line, text);
  std::abort();
}

int ReadProcessTable(kinfo_proc* list, std::size_t* bytes) {
  int const result = BSD::sysctl(kAllProcesses, 3, list, bytes, nullptr, 0);
  return result == -1 ? errno : result;
}

// One that needs more room than there was at the count is read again.
int TakeSnapshot(OwnedProcessList& list, std::size_t& bytes) {
  for (;;) {
    bytes = 0;
    if (int const error = ReadProcessTable(nullptr, &bytes); error != 0) return error;
    list.reset(static_cast<kinfo_proc*>(std::malloc(bytes)));
    if (list == nullptr) return ENOMEM;
    if (int const error = ReadProcessTable(list.get(), &bytes); error != ENOMEM) return error;
    list.reset();
  }
}

}  // namespace

#define REQUIRE(condition) Require(condition, #condition, __LINE__)

int GetBSDProcessList(kinfo_proc** procList, std::size_t* procCount) {
  REQUIRE(procList != NULL);
  REQUIRE(*procList == NULL);
  REQUIRE(procCount != NULL);

  OwnedProcessList list;
  std::size_t bytes = 0;
  int const err = TakeSnapshot(list, bytes);
  *procCount = err == 0 ? bytes / sizeof(kinfo_proc) : 0;
  if (err == 0) *procList = list.release();

  REQUIRE((err == 0) == (*procList != NULL));
  return err;
}
