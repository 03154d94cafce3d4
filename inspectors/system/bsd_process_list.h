// One snapshot of the kernel's process table.
#pragma once

#include <BSD/BSD.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

using BSD::kinfo_proc;

struct FreeProcessList {
  void operator()(kinfo_proc* list) const { std::free(list); }
};
using OwnedProcessList = std::unique_ptr<kinfo_proc[], FreeProcessList>;

// 0, and a list in kernel order that the caller releases with `free`; or an `errno` value, and a
// null list. Neither pointer is null and `*procList` is null on entry, or the process ends with a
// message on standard error. Tries again without limit while the table outgrows its buffer.
int GetBSDProcessList(kinfo_proc** procList, std::size_t* procCount);
