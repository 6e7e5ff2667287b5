#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zq_list.h"

namespace {

struct Record {
  char tag;
  int32_t number;
  uint32_t amount;
  const char* text;
};

std::string Tags(const zq_List& list) {
  std::string tags;
  for (auto* p = list.First(); p != nullptr; p = list.Next(p))
    tags += static_cast<Record*>(list.Record(p))->tag;
  return tags;
}

zq_List Sorted(zq_ListOrder order, zq_ListKey key, size_t offset) {
  return {"sorted", order, key, offset, __FILE__, __LINE__};
}

class List : public testing::Test {
 protected:
  Record a_{'a', 5, 5, "pear"};
  Record b_{'b', -7, 4000000000U, nullptr};
  Record c_{'c', 5, 0, "apple"};
  Record d_{'d', INT32_MIN, 5, "apple"};
  Record e_{'e', INT32_MAX, 1, "\xFF"};

  std::string Ordered(zq_ListOrder order, zq_ListKey key, size_t offset) {
    zq_List list = Sorted(order, key, offset);
    for (Record* record : {&a_, &b_, &c_, &d_, &e_}) EXPECT_TRUE(list.Add(record));
    return Tags(list);
  }
};

TEST_F(List, BeginsEmptyAndKnowsItsName) {
  std::string name = "neighbours";
  const zq_List list(name.c_str(), __FILE__, __LINE__);
  name = "changed";
  EXPECT_STREQ(list.Name(), "neighbours");
  EXPECT_EQ(list.Count(), 0U);
  EXPECT_EQ(list.First(), nullptr);
}

TEST_F(List, ANullNameIsTheEmptyOne) {
  EXPECT_STREQ(zq_List(nullptr, nullptr, 0).Name(), "");
}

TEST_F(List, APlainListKeepsTheOrderOfArrival) {
  zq_List list("plain", __FILE__, __LINE__);
  EXPECT_TRUE(list.Add(&b_));
  EXPECT_TRUE(list.AddTail(&c_));
  EXPECT_TRUE(list.AddHead(&a_));
  EXPECT_EQ(Tags(list), "abc");
  EXPECT_EQ(list.Count(), 3U);
}

TEST_F(List, RemoveHeadTakesFromTheFrontUntilNullTellsTheEnd) {
  zq_List list("plain", __FILE__, __LINE__);
  list.Add(&a_);
  list.Add(&b_);
  EXPECT_EQ(list.RemoveHead(), &a_);
  EXPECT_EQ(list.RemoveHead(), &b_);
  EXPECT_EQ(list.RemoveHead(), nullptr);
  EXPECT_EQ(list.Count(), 0U);
}

TEST_F(List, RemoveTakesOnlyTheFirstOccurrence) {
  zq_List list("plain", __FILE__, __LINE__);
  for (Record* record : {&a_, &b_, &a_, &c_}) list.Add(record);
  EXPECT_TRUE(list.Remove(&a_));
  EXPECT_EQ(Tags(list), "bac");
  EXPECT_FALSE(list.Remove(&d_));
  EXPECT_FALSE(list.Remove(nullptr));
  EXPECT_EQ(Tags(list), "bac");
}

TEST_F(List, NullRecordsAreRefused) {
  zq_List list("plain", __FILE__, __LINE__);
  EXPECT_FALSE(list.Add(nullptr));
  EXPECT_FALSE(list.AddHead(nullptr));
  EXPECT_FALSE(list.AddTail(nullptr));
  EXPECT_EQ(list.Count(), 0U);
}

TEST_F(List, SortsSignedNumbersAndKeepsEqualOnesInOrderOfArrival) {
  EXPECT_EQ(Ordered(ZQ_LIST_ASCENDING, ZQ_LIST_KEY_INT32, offsetof(Record, number)), "dbace");
  EXPECT_EQ(Ordered(ZQ_LIST_DESCENDING, ZQ_LIST_KEY_INT32, offsetof(Record, number)), "eacbd");
}

TEST_F(List, SortsUnsignedNumbersAboveTheSignedRange) {
  EXPECT_EQ(Ordered(ZQ_LIST_ASCENDING, ZQ_LIST_KEY_UINT32, offsetof(Record, amount)), "ceadb");
  EXPECT_EQ(Ordered(ZQ_LIST_DESCENDING, ZQ_LIST_KEY_UINT32, offsetof(Record, amount)), "badec");
}

TEST_F(List, SortsTextsByteByByteWithNullAsTheLeast) {
  EXPECT_EQ(Ordered(ZQ_LIST_ASCENDING, ZQ_LIST_KEY_TEXT, offsetof(Record, text)), "bcdae");
  EXPECT_EQ(Ordered(ZQ_LIST_DESCENDING, ZQ_LIST_KEY_TEXT, offsetof(Record, text)), "eacdb");
}

TEST_F(List, ASortedListPutsRecordsInTheirPlaceFromEitherEnd) {
  zq_List list = Sorted(ZQ_LIST_ASCENDING, ZQ_LIST_KEY_INT32, offsetof(Record, number));
  list.AddTail(&e_);
  list.AddHead(&a_);
  list.AddTail(&d_);
  EXPECT_EQ(Tags(list), "dae");
}

TEST_F(List, APositionStaysGoodWhileOthersComeAndGo) {
  zq_List list("plain", __FILE__, __LINE__);
  for (Record* record : {&a_, &b_, &c_}) list.Add(record);
  zq_List::Position* middle = list.Next(list.First());
  list.Remove(&a_);
  list.Remove(&c_);
  list.Add(&d_);
  EXPECT_EQ(list.Record(middle), &b_);
  EXPECT_EQ(list.Record(list.Next(middle)), &d_);
}

TEST_F(List, NullPositionsLeadNowhere) {
  const zq_List list("plain", __FILE__, __LINE__);
  EXPECT_EQ(list.Next(nullptr), nullptr);
  EXPECT_EQ(list.Record(nullptr), nullptr);
}

TEST_F(List, HoldsManyRecordsInOrder) {
  constexpr int kRecords = 2000;
  std::vector<Record> records(kRecords);
  zq_List list = Sorted(ZQ_LIST_ASCENDING, ZQ_LIST_KEY_INT32, offsetof(Record, number));
  for (int i = 0; i < kRecords; ++i) {
    records[static_cast<size_t>(i)].number = (i * 7919) % kRecords;
    ASSERT_TRUE(list.Add(&records[static_cast<size_t>(i)]));
  }
  ASSERT_EQ(list.Count(), static_cast<size_t>(kRecords));
  for (int expected = 0; expected < kRecords; ++expected) {
    ASSERT_EQ(static_cast<Record*>(list.RemoveHead())->number, expected);
  }
}

TEST_F(List, ForgetsItsRecordsWithoutTouchingThem) {
  {
    zq_List list("plain", __FILE__, __LINE__);
    list.Add(&a_);
  }
  EXPECT_EQ(a_.tag, 'a');
}

}  // namespace
