#include "index/btstack.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/ScarceMemory.h"

namespace {

/// The values from the head to the tail, with a look at every link on the way.
std::vector<long> Values(const BtreeStack& stack) {
  std::vector<long> values;
  const BtreeStack_t* last = nullptr;
  for (const BtreeStack_t* node = stack.Head; node != nullptr; node = node->Next) {
    EXPECT_EQ(node->Prev, last);
    values.push_back(node->Value);
    last = node;
  }
  EXPECT_EQ(stack.Tail, last);
  return values;
}

using Numbers = std::vector<long>;

TEST(BtreeStack, ANewOneIsEmpty) {
  const BtreeStack stack;
  EXPECT_EQ(stack.Head, nullptr);
  EXPECT_EQ(stack.Tail, nullptr);
}

TEST(BtreeStack, PushAddsAtTheHeadAndReturnsTheElement) {
  BtreeStack stack;
  const BtreeStack_t* first = stack.Push(1);
  EXPECT_EQ(stack.Head, first);
  EXPECT_EQ(stack.Tail, first);
  const BtreeStack_t* second = stack.Push(2);
  EXPECT_EQ(stack.Head, second);
  EXPECT_EQ(second->Value, 2);
  EXPECT_EQ(Values(stack), Numbers({2, 1}));
}

TEST(BtreeStack, InsertAddsAtTheTailAndReturnsTheElement) {
  BtreeStack stack;
  const BtreeStack_t* first = stack.Insert(1);
  EXPECT_EQ(stack.Head, first);
  const BtreeStack_t* second = stack.Insert(2);
  EXPECT_EQ(stack.Tail, second);
  EXPECT_EQ(second->Value, 2);
  EXPECT_EQ(Values(stack), Numbers({1, 2}));
}

TEST(BtreeStack, PopExtractAndRemoveHeadTakeTheHead) {
  BtreeStack stack;
  for (const long value : {1, 2, 3, 4}) stack.Push(value);
  EXPECT_EQ(stack.Pop(), 4);
  EXPECT_EQ(stack.Extract(), 3);
  EXPECT_EQ(stack.RemoveHead(), 2);
  EXPECT_EQ(Values(stack), Numbers({1}));
  EXPECT_EQ(stack.Pop(), 1);
  EXPECT_EQ(Values(stack), Numbers());
}

TEST(BtreeStack, RemoveTailTakesTheTail) {
  BtreeStack stack;
  for (const long value : {1, 2, 3}) stack.Push(value);
  EXPECT_EQ(stack.RemoveTail(), 1);
  EXPECT_EQ(Values(stack), Numbers({3, 2}));
  EXPECT_EQ(stack.RemoveTail(), 2);
  EXPECT_EQ(stack.RemoveTail(), 3);
  EXPECT_EQ(Values(stack), Numbers());
}

TEST(BtreeStack, AnEmptyOneGivesZero) {
  BtreeStack stack;
  EXPECT_EQ(stack.Pop(), 0);
  EXPECT_EQ(stack.Extract(), 0);
  EXPECT_EQ(stack.RemoveHead(), 0);
  EXPECT_EQ(stack.RemoveTail(), 0);
  EXPECT_EQ(Values(stack), Numbers());
}

TEST(BtreeStack, MayBeFilledAgainAfterItWasEmptied) {
  BtreeStack stack;
  stack.Push(1);
  stack.Pop();
  stack.Insert(2);
  stack.Push(3);
  EXPECT_EQ(Values(stack), Numbers({3, 2}));
}

TEST(BtreeStack, ClearFreesEverything) {
  BtreeStack stack;
  for (long value = 0; value < 1000; ++value) stack.Push(value);
  stack.Clear();
  EXPECT_EQ(Values(stack), Numbers());
  stack.Clear();
  EXPECT_EQ(Values(stack), Numbers());
}

TEST(BtreeStack, HasNoLimit) {
  BtreeStack stack;
  for (long value = 1; value <= 100000; ++value) ASSERT_NE(stack.Push(value), nullptr);
  for (long value = 100000; value > 0; --value) ASSERT_EQ(stack.Pop(), value);
  EXPECT_EQ(stack.Head, nullptr);
}

TEST(BtreeStack, MakeEmptyLeavesTheElementsToTheCaller) {
  BtreeStack stack;
  BtreeStack_t* tail = stack.Push(1);
  BtreeStack_t* head = stack.Push(2);
  stack.MakeEmpty();
  EXPECT_EQ(Values(stack), Numbers());
  EXPECT_EQ(head->Next, tail);
  EXPECT_EQ(BtreeStack::FreeNode(head), 2);
  EXPECT_EQ(BtreeStack::FreeNode(tail), 1);
}

TEST(BtreeStack, FreeNodeTakesANullElementAsZero) {
  EXPECT_EQ(BtreeStack::FreeNode(nullptr), 0);
}

TEST(BtreeStack, AllocNodeMakesAnElementThatIsInNoList) {
  BtreeStack_t* node = BtreeStack::AllocNode(-5);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->Value, -5);
  EXPECT_EQ(node->Next, nullptr);
  EXPECT_EQ(node->Prev, nullptr);
  EXPECT_EQ(BtreeStack::FreeNode(node), -5);
}

TEST(BtreeStack, DetachNodeTakesAnElementOutFromAnywhere) {
  for (const long out : {1, 2, 3}) {
    BtreeStack stack;
    Numbers left;
    BtreeStack_t* chosen = nullptr;
    for (const long value : {1, 2, 3}) {
      BtreeStack_t* node = stack.Insert(value);
      if (value == out) {
        chosen = node;
      } else {
        left.push_back(value);
      }
    }
    EXPECT_EQ(stack.DetachNode(chosen), chosen);
    EXPECT_EQ(chosen->Next, nullptr);
    EXPECT_EQ(chosen->Prev, nullptr);
    EXPECT_EQ(Values(stack), left);
    EXPECT_EQ(BtreeStack::FreeNode(chosen), out);
  }
}

TEST(BtreeStack, DetachNodeOfTheOnlyElementLeavesAnEmptyList) {
  BtreeStack stack;
  BtreeStack_t* only = stack.Push(1);
  BtreeStack::FreeNode(stack.DetachNode(only));
  EXPECT_EQ(Values(stack), Numbers());
  EXPECT_EQ(stack.DetachNode(nullptr), nullptr);
}

TEST(BtreeStack, ElementsGoBeforeAndBehindOthers) {
  BtreeStack stack;
  BtreeStack_t* two = BtreeStack::AllocNode(2);
  stack.InsertBefore(nullptr, two);
  EXPECT_EQ(Values(stack), Numbers({2}));
  stack.InsertBefore(two, BtreeStack::AllocNode(0));
  stack.InsertBefore(two, BtreeStack::AllocNode(1));
  stack.InsertAfter(two, BtreeStack::AllocNode(4));
  stack.InsertAfter(two, BtreeStack::AllocNode(3));
  EXPECT_EQ(Values(stack), Numbers({0, 1, 2, 3, 4}));
}

TEST(BtreeStack, InsertAfterFillsAnEmptyList) {
  BtreeStack stack;
  stack.InsertAfter(nullptr, BtreeStack::AllocNode(1));
  EXPECT_EQ(Values(stack), Numbers({1}));
}

TEST(BtreeStack, WithoutMemoryNothingIsAdded) {
  BtreeStack stack;
  stack.Push(1);
  const ScarceMemory scarce(0);
  EXPECT_EQ(stack.Push(2), nullptr);
  EXPECT_EQ(stack.Insert(3), nullptr);
  EXPECT_EQ(BtreeStack::AllocNode(4), nullptr);
  EXPECT_EQ(Values(stack), Numbers({1}));
}

}  // namespace
