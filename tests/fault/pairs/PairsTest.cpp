#include <gtest/gtest.h>

#include "tests/fault/pairs/Matches.h"
#include "tests/fault/pairs/PairChecks.h"
#include "tests/fault/pairs/PairRun.h"

// Whole files that don't belong together. What open, reading, checks and rebuilds make of each
// pair, and whether every object of the data file is there in the end, byte for byte.

// ---- The pair itself ----

TEST(Pairs, FilesThatBelongTogether) {
  for (const FilePair* files :
       {&Files().whole, &Files().more, &Files().less, &Files().reused, &Files().retaken,
        &Files().grown, &Files().swapped, &Files().turned, &Files().foreign, &Files().fresh}) {
    const Pair pair = Of(files->data, files->index);
    ExpectUnchanged(TakeCourses("files that belong together", "together", pair), CountOf(pair));
  }
}

// ---- Older and newer ----

TEST(Pairs, IndexFromBeforeStores) {
  const Pair pair = Of(Files().more.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index older than the data", "since then: stores", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - kMore, .absent = kMore}));
  EXPECT_EQ(outcome.read.inIndexOrder, (Tally{.right = objects - kMore, .absent = kMore}));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexFromBeforeRemovals) {
  const Pair pair = Of(Files().less.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index older than the data", "removals", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects}));
  EXPECT_TRUE(outcome.read.told);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexFromBeforeBlocksWereTakenAgain) {
  const Pair pair = Of(Files().reused.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index older than the data", "blocks taken again", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - 3, .absent = 3}));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexFromBeforeABlockWentToAnotherClass) {
  const Pair pair = Of(Files().retaken.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome =
      TakeCourses("index older than the data", "a block taken by another class", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - 1, .absent = 1}));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexFromBeforeUpdates) {
  const Pair pair = Of(Files().grown.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index older than the data", "updates", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - kGrown, .refused = kGrown}));
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexWithStoresThatTheDataLacks) {
  const Pair pair = Of(Files().whole.data, Files().more.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index newer than the data", "since then: stores", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects}));
  EXPECT_TRUE(outcome.read.told);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexWithoutObjectsThatTheDataStillHas) {
  const Pair pair = Of(Files().whole.data, Files().less.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index newer than the data", "removals", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - kLess, .absent = kLess}));
  EXPECT_EQ(outcome.read.inIndexOrder, (Tally{.right = objects - kLess, .absent = kLess}));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexWhoseBlocksWereTakenAgain) {
  const Pair pair = Of(Files().whole.data, Files().reused.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index newer than the data", "blocks taken again", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - kLess, .absent = kLess}));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexOfUpdatesThatTheDataLacks) {
  const Pair pair = Of(Files().whole.data, Files().grown.index);
  const int objects = CountOf(pair);
  const Outcome outcome = TakeCourses("index newer than the data", "updates", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - kGrown, .refused = kGrown}));
  EXPECT_TRUE(outcome.read.told);
  ExpectHealed(outcome, objects);
}

// ---- Foreign ----

TEST(Pairs, IndexOfAStudyWithOtherKeys) {
  for (const auto& [data, index] : {std::pair{&Files().whole, &Files().foreign},
                                    {&Files().foreign, &Files().whole},
                                    {&Files().fresh, &Files().whole}}) {
    const Pair pair = Of(data->data, index->index);
    const Outcome outcome = TakeCourses("index of another study", "other keys", pair);
    ExpectOpens(outcome, CountOf(pair));
    EXPECT_TRUE(outcome.read.told);
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(Pairs, IndexOfAStudyWithTheSameKeysElsewhere) {
  for (const auto& [data, index] :
       {std::pair{&Files().whole, &Files().turned}, {&Files().turned, &Files().whole}}) {
    const Pair pair = Of(data->data, index->index);
    const Outcome outcome = TakeCourses("index of another study", "the same keys elsewhere", pair);
    ExpectOpens(outcome, CountOf(pair));
    EXPECT_EQ(outcome.read.byKey.absent, 0);
    EXPECT_TRUE(outcome.read.told);
    ExpectHealed(outcome, CountOf(pair));
  }
}

TEST(Pairs, IndexFromBeforeARebuildOfTheData) {
  const FilePair files = Compacted(Files().whole);
  const Pair pair = Of(files.data, files.index);
  const Outcome outcome =
      TakeCourses("index older than the data", "a rebuild of the data alone", pair);
  ExpectOpens(outcome, CountOf(pair));
  EXPECT_EQ(outcome.read.byKey.absent, 0);
  EXPECT_TRUE(outcome.read.told);
  ExpectHealed(outcome, CountOf(pair));
}

TEST(Pairs, ObjectsOfAClassThatHaveEachOthersPlaces) {
  const Pair pair = Of(Files().swapped.data, Files().whole.index);
  const int objects = CountOf(pair);
  const Outcome outcome =
      TakeCourses("index of another study", "objects of a class have each other's places", pair);
  ExpectOpens(outcome, objects);
  EXPECT_EQ(outcome.read.byKey, (Tally{.right = objects - 4, .refused = 4}));
  ExpectHealed(outcome, objects);
}

TEST(Pairs, IndexOfANewStudy) {
  const Pair pair = Of(Files().whole.data, Files().fresh.index);
  const Outcome outcome = TakeCourses("index of another study", "a new study's", pair);
  ExpectOpens(outcome, CountOf(pair));
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, CountOf(pair));
}

TEST(Pairs, IndexWithoutKeys) {
  const Pair pair = Of(Files().whole.data, Files().empty.index);
  const Outcome outcome = TakeCourses("index of another study", "without keys", pair);
  EXPECT_STREQ(outcome.read.indexCheck, kMismatch);
  ExpectHealed(outcome, CountOf(pair));
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int failed = RUN_ALL_TESTS();
  if (!testing::GTEST_FLAG(list_tests)) PrintCourses();
  return failed;
}
