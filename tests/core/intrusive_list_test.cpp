#include "core/intrusive_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace tarvo::core {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Item : ListLink {
  explicit Item(int givenNumber) : number(givenNumber) {}
  int number;
};

std::vector<int> NumbersOf(const IntrusiveList<Item>& list) {
  std::vector<int> numbers;
  for (const Item* item = list.Front(); item != nullptr; item = list.After(item)) numbers.push_back(item->number);
  return numbers;
}

TEST(IntrusiveList, KeepsTheOrderInWhichItsMembersCame) {
  Item one(1);
  Item two(2);
  IntrusiveList<Item> list;
  EXPECT_TRUE(list.Empty());
  EXPECT_EQ(list.Front(), nullptr);
  list.PushBack(one);
  list.PushBack(two);
  EXPECT_THAT(NumbersOf(list), ElementsAre(1, 2));
  EXPECT_EQ(list.PopFront(), &one);
  EXPECT_EQ(list.PopFront(), &two);
  EXPECT_EQ(list.PopFront(), nullptr);
}

TEST(IntrusiveList, InsertsBeforeAMemberOrAtTheEnd) {
  Item one(1);
  Item two(2);
  Item three(3);
  Item four(4);
  IntrusiveList<Item> list;
  list.PushBack(three);
  list.InsertBefore(&three, one);
  list.InsertBefore(&three, two);
  list.InsertBefore(nullptr, four);
  EXPECT_THAT(NumbersOf(list), ElementsAre(1, 2, 3, 4));
}

TEST(IntrusiveList, LosesAMemberThatDies) {
  Item one(1);
  std::optional<Item> two(std::in_place, 2);
  Item three(3);
  IntrusiveList<Item> list;
  list.PushBack(one);
  list.PushBack(*two);
  list.PushBack(three);
  two.reset();
  EXPECT_THAT(NumbersOf(list), ElementsAre(1, 3));
}

TEST(IntrusiveList, ItsEndUnlinksItsMembers) {
  Item one(1);
  {
    IntrusiveList<Item> list;
    list.PushBack(one);
    EXPECT_TRUE(one.Linked());
  }
  EXPECT_FALSE(one.Linked());
  one.Unlink();
}

TEST(IntrusiveList, TakesAllOfAnotherInItsOrder) {
  Item one(1);
  Item two(2);
  Item three(3);
  IntrusiveList<Item> list;
  IntrusiveList<Item> other;
  list.PushBack(one);
  other.PushBack(two);
  other.PushBack(three);
  list.TakeAll(other);
  EXPECT_THAT(NumbersOf(list), ElementsAre(1, 2, 3));
  EXPECT_THAT(NumbersOf(other), IsEmpty());
}

}  // namespace
}  // namespace tarvo::core
