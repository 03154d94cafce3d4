// The recording evaluator's entry points are this program's and so come before those of the
// library: it sees what the module registers and withdraws.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string_view>

#include "tests/support/recording_evaluator.h"

namespace {

// The module's own handles: the libraries below it register too.
bool IsOfModule(void const* handle) {
  Dl_info info;
  return ::dladdr(handle, &info) != 0 && std::string_view(info.dli_fname).ends_with("/Gatotu.so");
}

TEST(Module, WithdrawsEachHandleOnceInReverseOrder) {
  RecordingEvaluator& evaluator = RecordingEvaluator::Instance();
  for (int round = 0; round < 2; ++round) {
    evaluator.registered.clear();
    evaluator.withdrawn.clear();
    void* const module = ::dlopen(GATOTU_MODULE, RTLD_NOW);
    ASSERT_NE(module, nullptr) << ::dlerror();
    std::vector<void*> registered;
    for (auto const& each : evaluator.registered) {
      if (IsOfModule(each.handle)) registered.push_back(each.handle);
    }
    ASSERT_GT(registered.size(), 30U);

    EXPECT_EQ(::dlclose(module), 0);
    EXPECT_EQ(::dlopen(GATOTU_MODULE, RTLD_NOW | RTLD_NOLOAD), nullptr);
    // The module's are withdrawn before those of the libraries that it needs.
    ASSERT_GE(evaluator.withdrawn.size(), registered.size());
    for (std::size_t i = 0; i < registered.size(); ++i) {
      EXPECT_EQ(evaluator.withdrawn[i].second, registered[registered.size() - 1 - i]) << i;
    }
  }
}

}  // namespace
