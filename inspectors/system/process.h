// The running processes of the machine.
#pragma once

#include <cstddef>
#include <cstdint>

#include "evaluator/plugin/exceptions.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/plugin/values.h"
#include "inspectors/system/bsd_process_list.h"

// A copy of the kernel's record: the process may have ended since.
struct process {
  kinfo_proc record;
};

template <>
struct InspectorTypeName<process> {
  static constexpr char const* kName = "process";
};

class GetBSDProcessListFailed : public DebuggableException {};

// The processes of one snapshot, taken by `First`, in the kernel's order.
class process_iterator {
 public:
  // `GetBSDProcessListFailed` where there is no snapshot to be had.
  process First();
  process Next();

  void FreeProcList();

 private:
  OwnedProcessList list_;
  std::size_t count_ = 0;
  std::size_t index_ = 0;
};

process numbered_process_of_world(unsigned long long number);
// The kernel's short name, at most 16 bytes.
inspector_string name_of_process(process const& process);
integer pid_of_process(process const& process);

// When the kernel was started. 0 where the machine does not tell.
std::int64_t BootSecondsSince1970();
