#include "portable/stack.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

struct Element {
  std::uint64_t values[3];
};

Element* Push(StackBase& stack, std::uint64_t value) {
  return new (stack.Allocate()) Element{{value, value, value}};
}

std::uint64_t TopOf(StackBase const& stack) {
  return static_cast<Element const*>(stack.Top())->values[2];
}

class StackOnPiece : public testing::TestWithParam<unsigned long> {
 protected:
  alignas(std::max_align_t) unsigned char area_[1000] = {};
};

TEST_P(StackOnPiece, GrowsAndShrinksAcrossPieces) {
  // Off its alignment, so that the stack must find its own.
  StackBase stack(Data(area_ + 1, GetParam()), sizeof(Element));
  std::vector<Element*> elements;
  for (std::uint64_t value = 0; value < 1000; ++value) elements.push_back(Push(stack, value));
  for (std::uint64_t value = 0; value < 1000; ++value) {
    ASSERT_EQ(elements[value]->values[0], value);  // it did not move
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(elements[value]) % alignof(Element), 0u);
  }
  for (std::uint64_t count = 1000; count > 500; stack.Pop(), --count) {
    ASSERT_EQ(stack.Count(), count);
    ASSERT_EQ(TopOf(stack), count - 1);
  }
  stack.Pop(490);
  EXPECT_EQ(stack.Count(), 10u);
  EXPECT_EQ(TopOf(stack), 9u);
  for (int round = 0; round < 100; ++round) {
    for (std::uint64_t value = 10; value < 60; ++value) Push(stack, value);
    stack.Pop(50);
    ASSERT_EQ(TopOf(stack), 9u);
  }
  stack.Pop(10);
  EXPECT_EQ(stack.Count(), 0u);
  stack.Pop();
  Push(stack, 5);
  EXPECT_EQ(TopOf(stack), 5u);
  EXPECT_EQ(stack.Count(), 1u);
}

// None, too small for a header, a header alone, one element, many.
INSTANTIATE_TEST_SUITE_P(Sizes, StackOnPiece, testing::Values(0, 8, 40, 80, 900));

TEST(Stack, UsesThePieceItWasGivenFirst) {
  alignas(std::max_align_t) unsigned char area[24 + 2 * 16 + 8];
  StackBase stack(Data(area, sizeof area), 16);
  void* const first = stack.Allocate();
  void* const second = stack.Allocate();
  EXPECT_EQ(first, area + 48);
  EXPECT_EQ(second, area + 32);  // downwards
  auto* const third = static_cast<unsigned char*>(stack.Allocate());
  EXPECT_TRUE(third < area || third >= area + sizeof area);
  stack.PopAll();
  EXPECT_EQ(stack.Allocate(), first);
}

TEST(FiniteStack, GivesBackWhatItTook) {
  alignas(std::max_align_t) unsigned char area[40];
  FiniteStackBase stack(area, sizeof area, 16);
  void* const first = stack.Allocate(16);
  void* const second = stack.Allocate(1);
  EXPECT_EQ(first, area + 16);
  EXPECT_EQ(second, area);
  EXPECT_THROW(stack.Allocate(16), StackFull);
  stack.Release(second);
  EXPECT_EQ(stack.Top(), first);
  EXPECT_EQ(stack.Allocate(16), second);
  stack.Pop(2);
  EXPECT_EQ(stack.Count(), 0u);
  EXPECT_THROW(stack.Allocate(17), StackFull);
  EXPECT_EQ(stack.Allocate(16), first);
  EXPECT_THROW(FiniteStackBase(nullptr, 0, 16).Allocate(16), StackFull);
}

TEST(FiniteStack, HoldsWhatItsAreaHasRoomFor) {
  alignas(std::max_align_t) unsigned char area[80];
  for (unsigned long element_size : {1, 4, 8, 24}) {
    FiniteStackBase stack(area + 8, 72, element_size);
    for (unsigned long i = 0; i < 72 / element_size; ++i) stack.Allocate(element_size);
    EXPECT_EQ(stack.Top(), area + 8);
    EXPECT_THROW(stack.Allocate(element_size), StackFull);
  }
}

}  // namespace
