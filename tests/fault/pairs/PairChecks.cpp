#include "tests/fault/pairs/PairChecks.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fault/pairs/Matches.h"

Course::Known KnownIn(const std::string& data) {
  Course::Known known;
  known.objects = ObjectsIn(data);
  const StudyFiles& files = Files();
  for (const FilePair* other :
       {&files.whole, &files.more, &files.reused, &files.retaken, &files.foreign}) {
    for (const ListedObject& object : ObjectsIn(other->data)) {
      const auto is = [&](const ListedObject& listed) {
        return listed.classID == object.classID && listed.key == object.key;
      };
      if (std::any_of(known.objects.begin(), known.objects.end(), is)) continue;
      if (std::any_of(known.others.begin(), known.others.end(), is)) continue;
      known.others.push_back(object);
    }
  }
  return known;
}

Pair Of(const std::string& data, const std::string& index) {
  return {data, index, {}, KnownIn(data)};
}

int CountOf(const Pair& pair) {
  return static_cast<int>(pair.known.objects.size());
}

void ExpectRead(const Findings& read, int objects) {
  const Tally all{.right = objects};
  EXPECT_TRUE(read.isOpen) << read.opened;
  EXPECT_STREQ(read.opened, "");
  EXPECT_EQ(read.byKey, all) << read.lost;
  EXPECT_EQ(read.inIndexOrder, all) << read.lost;
  EXPECT_EQ(read.inFileOrder, all) << read.lost;
}

void ExpectOpens(const Outcome& outcome, int objects) {
  EXPECT_TRUE(outcome.read.isOpen) << outcome.read.opened;
  EXPECT_EQ(outcome.read.inFileOrder, (Tally{.right = objects})) << outcome.read.lost;
  EXPECT_STREQ(outcome.read.fileCheck, "");
}

void ExpectHealed(const Outcome& outcome, int objects) {
  const Tally all{.right = objects};
  for (const Findings* findings : {&outcome.rebuilt, &outcome.opened}) {
    EXPECT_FALSE(findings->refused) << findings->fileRebuild << ", " << findings->indexRebuild;
    EXPECT_EQ(findings->atLast, all) << findings->lost;
  }
  if (outcome.updated.refused) {
    EXPECT_STREQ(outcome.updated.indexRebuild, "Duplicate entry");
    EXPECT_EQ(outcome.updated.gone, 0) << outcome.updated.lost;
  } else {
    EXPECT_EQ(outcome.updated.atLast, all) << outcome.updated.lost;
  }
}

void ExpectUnchanged(const Outcome& outcome, int objects) {
  ExpectRead(outcome.read, objects);
  EXPECT_STREQ(outcome.read.fileCheck, "");
  EXPECT_STREQ(outcome.read.indexCheck, "");
  ExpectHealed(outcome, objects);
  EXPECT_FALSE(outcome.updated.refused);
}
