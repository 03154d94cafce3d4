#include "inspectors/system/process.h"

#include "tests/inspectors/asking.h"
#include "tests/support/on_scripted_machine.h"

namespace {

using Processes = OnScriptedMachine;

TEST_F(Processes, EachOfASnapshotComesOnceInTheKernelsOrder) {
  machine_->AddProcess(1, "init");
  machine_->AddProcess(70, "b");
  machine_->AddProcess(8, "a");
  process_iterator iterator;
  process const first = iterator.First();
  machine_->processes.clear();
  EXPECT_EQ(pid_of_process(iterator.Next()), 70);
  EXPECT_EQ(pid_of_process(iterator.Next()), 8);
  EXPECT_THROW(iterator.Next(), NoSuchObject);
  EXPECT_THROW(iterator.Next(), NoSuchObject);
  iterator.FreeProcList();
  EXPECT_EQ(Shown(name_of_process(first)), "init");
  machine_->AddProcess(5, "new");
  EXPECT_THAT(All(iterator, pid_of_process), testing::ElementsAre(5));
}

TEST_F(Processes, AnEmptyOrRefusedSnapshotIsNotTheSame) {
  process_iterator iterator;
  EXPECT_THROW(iterator.First(), GetBSDProcessListFailed);
  machine_->AddProcess(1, "gone");
  machine_->after_count = [this] { machine_->processes.clear(); };
  EXPECT_THROW(iterator.First(), NoSuchObject);
}

TEST_F(Processes, ATableThatOutgrowsItsBufferIsReadAgain) {
  machine_->AddProcess(1, "init");
  int counts = 0;
  machine_->after_count = [&] {
    if (++counts > 3) return;
    for (int i = 0; i < 200; ++i) machine_->AddProcess(1000 * counts + i, "new");
  };
  process_iterator iterator;
  EXPECT_EQ(All(iterator, pid_of_process).size(), 601u);
  EXPECT_EQ(machine_->calls().all_processes, 4);
}

TEST_F(Processes, OneByItsNumber) {
  machine_->AddProcess(42, "abcdefghijklmnopqrs");
  process const found = numbered_process_of_world(42);
  EXPECT_EQ(Answers({"pid", "id", "process id", "name"}, "process", &found),
            "42, 42, 42, abcdefghijklmnop");
  EXPECT_EQ(machine_->calls().all_processes, 0);
  for (unsigned long long const number : {43ull, 0ull, 0xFFFFFFFFull}) {
    EXPECT_THROW(numbered_process_of_world(number), NoSuchObject) << number;
  }
  int const asked = machine_->calls().one_process;
  for (unsigned long long const number : {(1ull << 32) + 42, 1ull << 32, ~0ull}) {
    EXPECT_THROW(numbered_process_of_world(number), NoSuchObject) << number;
  }
  EXPECT_EQ(machine_->calls().one_process, asked);
}

using ProcessesDeathTest = Processes;

TEST_F(ProcessesDeathTest, BrokenPreconditionsEndTheProcess) {
  kinfo_proc record;
  kinfo_proc* none = nullptr;
  kinfo_proc* some = &record;
  std::size_t count = 0;
  std::string const message = "BSDProcessList:[0-9]+: failed assertion `";
  EXPECT_DEATH(GetBSDProcessList(nullptr, &count), message + "procList != NULL'\n");
  EXPECT_DEATH(GetBSDProcessList(&some, &count), message + "\\*procList == NULL'\n");
  EXPECT_DEATH(GetBSDProcessList(&none, nullptr), message + "procCount != NULL'\n");
}

}  // namespace
