#include "inspectors/system/process.h"

#include <limits>

#include "frame/inspector_strings.h"
#include "frame/registration.h"

process process_iterator::First() {
  FreeProcList();
  kinfo_proc* list = nullptr;
  if (GetBSDProcessList(&list, &count_) != 0) throw GetBSDProcessListFailed();
  list_.reset(list);
  index_ = 0;
  if (count_ == 0) throw NoSuchObject();
  return {list_[0]};
}

process process_iterator::Next() {
  if (++index_ >= count_) throw NoSuchObject();
  return {list_[index_]};
}

void process_iterator::FreeProcList() {
  list_.reset();
  count_ = 0;
}

// The result of the call alone decides; how many bytes it wrote is not looked at.
process numbered_process_of_world(unsigned long long number) {
  if (number > std::numeric_limits<std::uint32_t>::max()) throw NoSuchObject();
  int const name[] = {BSD::CTL_KERN, BSD::KERN_PROC, BSD::KERN_PROC_PID,
                      static_cast<int>(static_cast<std::uint32_t>(number))};
  process found;
  std::size_t size = sizeof(found.record);
  if (BSD::sysctl(name, 4, &found.record, &size, nullptr, 0) != 0) throw NoSuchObject();
  return found;
}

inspector_string name_of_process(process const& process) {
  return CopyToInspectorString(ConstData(process.record.kp_proc.p_comm));
}

integer pid_of_process(process const& process) { return process.record.kp_proc.p_pid; }

std::int64_t BootSecondsSince1970() {
  int const name[] = {BSD::CTL_KERN, BSD::KERN_BOOTTIME};
  BSD::timeval boot_time;
  std::size_t size = sizeof(boot_time);
  BSD::sysctl(name, 2, &boot_time, &size, nullptr, 0);
  return boot_time.tv_sec;
}

namespace {

Type<process, kNoFingerprinting> process_type;
NumberedGlobalProperty<process> numbered_process("process", "processes", numbered_process_of_world,
                                                 nullptr);
IteratedGlobalProperty<process_iterator, process> processes("process", "processes", nullptr);
Property<process, inspector_string> process_name("name", "names", name_of_process, nullptr);
Property<process, integer> process_pid("pid", "pids", pid_of_process, nullptr);
Property<process, integer> process_id("id", "ids", pid_of_process, nullptr);
Property<process, integer> process_process_id("process id", "process ids", pid_of_process, nullptr);

}  // namespace
