#include "portable/macintosh/mutex.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

namespace {

using namespace MacintoshPlatform;

TEST(Mutex, IsFreeOnceItWasGivenBackAsOftenAsTaken) {
  Mutex mutex;
  auto const is_free = [&] {
    return std::async(std::launch::async, [&] { return mutex.Available(); }).get();
  };
  EXPECT_TRUE(is_free());
  EXPECT_EQ(WaitForMutex(mutex), &mutex);
  EXPECT_EQ(TryMutex(mutex), &mutex);
  EXPECT_TRUE(mutex.Available());
  EXPECT_FALSE(is_free());
  EXPECT_EQ(std::async(std::launch::async, [&] { return TryMutex(mutex); }).get(), nullptr);
  ReleaseMutex(&mutex);
  EXPECT_FALSE(is_free());
  ReleaseMutex(nullptr);
  ReleaseMutex(&mutex);
  EXPECT_TRUE(is_free());
}

TEST(Mutex, KeepsThreadsApart) {
  constexpr int kThreads = 4, kTurns = 2000;
  Mutex mutex;
  int turns = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < kTurns; ++turn) {
        Mutex* const outer = WaitForMutex(mutex);
        Mutex* const inner = WaitForMutex(mutex);
        int const before = turns;
        std::this_thread::yield();
        turns = before + 1;
        ReleaseMutex(inner);
        ReleaseMutex(outer);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(turns, kThreads * kTurns);
}

}  // namespace
