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

TEST(Slots, OfTheHostsContext) {
  using Context = ActiveDirectoryInspectorContext;
  long const slots[] = {
      Slot(&Context::AreLookupsEnabled),   Slot(&Context::ComputerRefreshInterval),
      Slot(&Context::UserRefreshInterval), Slot(&Context::FindComputerCache),
      Slot(&Context::FindUserCache),       Slot(&Context::UnusedSlot5),
      Slot(&Context::UnusedSlot6),         Slot(&Context::LocalComputer),
      Slot(&Context::LocalUser),           Slot(&Context::LocalUserAt),
      Slot(&Context::ShouldStop)};
  for (long i = 0; i < static_cast<long>(std::size(slots)); ++i) EXPECT_EQ(slots[i], i);
}

TEST(Slots, OfRecords) {
  using Base = ActiveDirectoryBase;
  long const slots[] = {Slot(&Base::ClearData),         Slot(&Base::GetDistinguishedName),
                        Slot(&Base::GetLastSampleTime), Slot(&Base::GetErrorMessage),
                        Slot(&Base::GetErrorCount),     Slot(&Base::ToXml),
                        Slot(&Base::GetCacheState)};
  for (long i = 0; i < static_cast<long>(std::size(slots)); ++i) EXPECT_EQ(slots[i], i);
}

TEST(Slots, OfXmlHandlers) {
  EXPECT_EQ(Slot(&XMLHandler::StartElement), 0);
  EXPECT_EQ(Slot(&XMLHandler::EndElement), 1);
  EXPECT_EQ(Slot(&XMLHandler::Characters), 2);
  EXPECT_EQ(Slot(&XMLHandler::DoProcessingInstructionElement), 3);
}

}  // namespace
