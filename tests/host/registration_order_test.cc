// Stands in for the evaluator: the entry points of this program come before those of the library,
// so that it sees what the module registers and withdraws.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/entry_points.h"

namespace {

std::vector<void*> registered;
std::vector<void*> withdrawn;

// The module's own handles: the libraries below it register too.
bool IsOfModule(void const* handle) {
  Dl_info info;
  return ::dladdr(handle, &info) != 0 && std::string_view(info.dli_fname).ends_with("/Gatotu.so");
}

bool Register(void* handle) {
  if (IsOfModule(handle)) registered.push_back(handle);
  return true;
}

bool Withdraw(void* handle) {
  if (IsOfModule(handle)) withdrawn.push_back(handle);
  return true;
}

}  // namespace

bool Register_Type(void* handle, unsigned long, char const*, unsigned long, InspectorDestroy,
                   char const*, int) {
  return Register(handle);
}
bool Register_Property(void* handle, unsigned long, char const*, char const*, char const*,
                       char const*, char const*, InspectorGet, void const*, FingerprintFunction) {
  return Register(handle);
}
bool Register_Iterated_Property(void* handle, unsigned long, char const*, char const*, char const*,
                                char const*, char const*, unsigned long, InspectorConstruct,
                                InspectorDestroy, InspectorGet, InspectorGet, void const*,
                                FingerprintFunction) {
  return Register(handle);
}
bool Register_Cast(void* handle, unsigned long, char const*, char const*, char const*,
                   InspectorCast, void const*, FingerprintFunction) {
  return Register(handle);
}
bool Register_Binary_Operator(void* handle, unsigned long, int, char const*, char const*,
                              char const*, InspectorOperator, void const*, FingerprintFunction) {
  return Register(handle);
}
bool Register_Cache(void* handle, unsigned long, InspectorCacheClear, void*) {
  return Register(handle);
}
bool Unregister_Type(void* handle) { return Withdraw(handle); }
bool Unregister_Property(void* handle) { return Withdraw(handle); }
bool Unregister_Cast(void* handle) { return Withdraw(handle); }
bool Unregister_Binary_Operator(void* handle) { return Withdraw(handle); }
bool Unregister_Cache(void* handle) { return Withdraw(handle); }
void* Allocate_Inspector_Memory(unsigned long size) { return std::malloc(size); }
InspectorContext* Get_Generic_Inspector_Context() { return nullptr; }
int Check_For_Inspector_Interruption() { return 0; }

TEST(Module, WithdrawsEachHandleOnceInReverseOrder) {
  for (int round = 0; round < 2; ++round) {
    registered.clear();
    withdrawn.clear();
    void* const module = ::dlopen(GATOTU_MODULE, RTLD_NOW);
    ASSERT_NE(module, nullptr) << ::dlerror();
    ASSERT_GT(registered.size(), 30U);
    std::vector<void*> const order(registered.rbegin(), registered.rend());
    EXPECT_EQ(::dlclose(module), 0);
    EXPECT_EQ(withdrawn, order);
    EXPECT_EQ(::dlopen(GATOTU_MODULE, RTLD_NOW | RTLD_NOLOAD), nullptr);
  }
}
