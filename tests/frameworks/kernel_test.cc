#include <BSD/BSD.h>

#include <cerrno>

#include "tests/support/on_scripted_machine.h"

namespace {

using KernelTest = OnScriptedMachine;

std::vector<int> const kAll = {BSD::CTL_KERN, BSD::KERN_PROC, BSD::KERN_PROC_ALL};

// The error number; 0 for an answer.
int Ask(std::vector<int> const& name, void* buffer, std::size_t* size) {
  auto const length = static_cast<unsigned>(name.size());
  return BSD::sysctl(name.data(), length, buffer, size, nullptr, 0) == 0 ? 0 : errno;
}

TEST_F(KernelTest, ListsTheProcessesOrFindsOne) {
  machine_->AddProcess(1, "init");
  machine_->AddProcess(7, "exactly 16 bytes");
  std::size_t size = 0;
  ASSERT_EQ(Ask(kAll, nullptr, &size), 0);
  EXPECT_GT(size, 2 * sizeof(BSD::kinfo_proc));
  EXPECT_EQ(machine_->calls().all_processes, 0);
  std::vector<BSD::kinfo_proc> table(size / sizeof(BSD::kinfo_proc));
  ASSERT_EQ(Ask(kAll, table.data(), &size), 0);
  ASSERT_EQ(size, 2 * sizeof(BSD::kinfo_proc));
  EXPECT_EQ(table[0].kp_proc.p_pid, 1);
  EXPECT_STREQ(table[1].kp_proc.p_comm, "exactly 16 bytes");

  BSD::kinfo_proc record;
  size = sizeof record;
  EXPECT_EQ(Ask({1, 14, 1, 7}, &record, &size), 0);
  EXPECT_STREQ(record.kp_proc.p_comm, "exactly 16 bytes");
  EXPECT_EQ(Ask({1, 14, 1, 8}, &record, &size), ESRCH);
  size = sizeof record - 1;
  EXPECT_EQ(Ask({1, 14, 1, 7}, &record, &size), ENOMEM);
}

TEST_F(KernelTest, SaysWhyItDoesNotAnswer) {
  BSD::timeval time;
  std::size_t size = sizeof time;
  std::pair<machine::Outcome, int> const rows[] = {{machine::Outcome::kAbsent, ENOENT},
                                                   {machine::Outcome::kPermissionRefused, EACCES},
                                                   {machine::Outcome::kMalformed, EIO},
                                                   {machine::Outcome::kNotSupported, ENOTSUP},
                                                   {machine::Outcome::kTimedOut, ETIMEDOUT}};
  for (auto const& [reason, error] : rows) {
    machine_->reason = reason;
    EXPECT_EQ(Ask({1, 21}, &time, &size), error);
    EXPECT_EQ(Ask(kAll, nullptr, &size), error);
  }
  machine_->boot_seconds = 5'000'000'000;
  EXPECT_EQ(Ask({1, 21}, &time, &size), 0);
  EXPECT_EQ(time.tv_sec, 5'000'000'000);
  for (std::vector<int> const& name :
       {std::vector<int>{}, {1}, {2, 21}, {1, 14}, {1, 14, 9, 1}, {1, 14, 1}, {1, 21, 0}}) {
    EXPECT_EQ(Ask(name, &time, &size), ENOENT);
  }
  int const name[] = {1, 21};
  EXPECT_EQ(BSD::sysctl(name, 2, nullptr, nullptr, &time, size), -1);
  EXPECT_EQ(errno, EPERM);
}

}  // namespace
