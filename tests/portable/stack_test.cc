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

TEST(Stack, GrowsAndShrinksAcrossPieces) {
  alignas(std::max_align_t) unsigned char area[1000];
  // None, too small for a header, a header alone, one element, many.
  for (unsigned long size : {0, 8, 40, 80, 900}) {
    SCOPED_TRACE(size);
    // Off its alignment, so that the stack must find its own.
    StackBase stack(Data(area + 1, size), sizeof(Element));
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
    for (int round = 0; round < 100; ++round) {
      ASSERT_EQ(TopOf(stack), 9u);
      for (std::uint64_t value = 10; value < 60; ++value) Push(stack, value);
      stack.Pop(50);
    }
    stack.Pop(10);
    stack.Pop();
    EXPECT_EQ(stack.Count(), 0u);
    Push(stack, 5);
    EXPECT_EQ(TopOf(stack), 5u);
    EXPECT_EQ(stack.Count(), 1u);
  }
}

TEST(Stack, UsesThePieceItWasGivenFirst) {
  alignas(std::max_align_t) unsigned char area[24 + 2 * 16 + 8];
  StackBase stack(Data(area, sizeof area), 16);
  void* const first = stack.Allocate();
  EXPECT_EQ(first, area + 48);
  EXPECT_EQ(stack.Allocate(), area + 32);  // downwards
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
  EXPECT_THROW(FiniteStackBase(nullptr, 0, 16).Allocate(16), StackFull);
  for (unsigned long element_size : {1, 4, 8}) {
    FiniteStackBase full(area, 32, element_size);
    for (unsigned long i = 0; i < 32 / element_size; ++i) full.Allocate(element_size);
    EXPECT_EQ(full.Top(), area);
    EXPECT_THROW(full.Allocate(element_size), StackFull);
  }
}

}  // namespace
