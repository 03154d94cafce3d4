// Hosts and handlers that were built against other headers find an operation by its place.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "inspectors/activedirectory/directory/active_directory_base.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/xml_handler.h"

namespace {

// Counted from 0 behind the destructor, which takes two places.
template <class Operation>
long Slot(Operation operation) {
  struct VirtualMember {
    std::intptr_t offset_plus_one;
    std::intptr_t adjustment;
  };
  auto const member = std::bit_cast<VirtualMember>(operation);
  return (member.offset_plus_one - 1) / static_cast<long>(sizeof(void*)) - 2;
}

template <class... Operation>
void ExpectInOrder(Operation... operations) {
  long expected = 0;
  for (long const slot : {Slot(operations)...}) EXPECT_EQ(slot, expected++);
}

TEST(Slots, AreInTheirOrder) {
  using Context = ActiveDirectoryInspectorContext;
  ExpectInOrder(&Context::AreLookupsEnabled, &Context::ComputerRefreshInterval,
                &Context::UserRefreshInterval, &Context::FindComputerCache, &Context::FindUserCache,
                &Context::UnusedSlot5, &Context::UnusedSlot6, &Context::LocalComputer,
                &Context::LocalUser, &Context::LocalUserAt, &Context::ShouldStop);
  using Base = ActiveDirectoryBase;
  ExpectInOrder(&Base::ClearData, &Base::GetDistinguishedName, &Base::GetLastSampleTime,
                &Base::GetErrorMessage, &Base::GetErrorCount, &Base::ToXml, &Base::GetCacheState);
  ExpectInOrder(&XMLHandler::StartElement, &XMLHandler::EndElement, &XMLHandler::Characters,
                &XMLHandler::DoProcessingInstructionElement);
}

}  // namespace
