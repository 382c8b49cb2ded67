#include <gtest/gtest.h>

#include <vector>

#include "store/KestErr.h"
#include "task/DResp.h"
#include "task/DVar.h"

// The way back from flattened entries to the definitions that they came from.

namespace {

using Numbers = std::vector<int>;

struct Fold {
  Numbers ids, kinds, positions, sizes, entries;
};

Fold FoldOf(const CDVar& vars) {
  Fold fold{{99}, {99}, {99}, {99}, {99}};
  vars.IDInputObjects(fold.ids, fold.kinds, fold.positions, fold.sizes, fold.entries);
  return fold;
}

Fold FoldOf(const CDResp& resps) {
  Fold fold;
  resps.IDRespObjects(fold.ids, fold.kinds, fold.positions, fold.sizes, fold.entries);
  return fold;
}

CDVar NoVariables() {
  return CDVar(static_cast<POD*>(nullptr));
}

TEST(FoldedVariables, HaveTheirKindPositionAndElements) {
  CDVar vars = NoVariables();
  vars.m_vnType = {23, 20, 20, 20, 21, 22, 22, 20};
  vars.m_vnSeq = {0, 0, 1, 2, 0, 0, 1, 3};
  vars.m_vnIndIDs = {7, 7, 7, 5};
  vars.m_vnLinkIDs = {3};
  vars.m_vnSynIDs = {4, 4};
  vars.m_vnConstIDs = {9};
  const Fold fold = FoldOf(vars);
  EXPECT_EQ(fold.ids, (Numbers{9, 7, 3, 4, 5}));
  EXPECT_EQ(fold.kinds, (Numbers{23, 20, 21, 22, 20}));
  EXPECT_EQ(fold.positions, (Numbers{0, 0, 0, 0, 3}));
  EXPECT_EQ(fold.sizes, (Numbers{1, 3, 1, 2, 1}));
  EXPECT_EQ(fold.entries, (Numbers{0, 1, 4, 5, 7}));
}

/// The elements of a random variable stand between those of its parameters.
TEST(FoldedVariables, GatherElementsThatStandApart) {
  CDVar vars = NoVariables();
  vars.m_vnType = {20, 23, 20, 23};
  vars.m_vnSeq = {0, 0, 1, 1};
  vars.m_vnIndIDs = {1, 1};
  vars.m_vnConstIDs = {2, 2};
  const Fold fold = FoldOf(vars);
  EXPECT_EQ(fold.ids, (Numbers{1, 2}));
  EXPECT_EQ(fold.sizes, (Numbers{2, 2}));
  EXPECT_EQ(fold.entries, (Numbers{0, 1}));
}

TEST(FoldedVariables, AreNoneForAnEmptyTable) {
  EXPECT_EQ(FoldOf(NoVariables()).ids, Numbers{});
}

TEST(FoldedVariables, OfAnotherKindAreInvalid) {
  for (const int kind : {0, 19, 24}) {
    CDVar vars = NoVariables();
    vars.m_vnType = {kind};
    vars.m_vnSeq = {0};
    EXPECT_THROW(FoldOf(vars), CInvalidType) << kind;
  }
}

TEST(FoldedVariables, OutsideTheirTablesAreInvalid) {
  for (const int position : {-1, 1}) {
    CDVar vars = NoVariables();
    vars.m_vnType = {20};
    vars.m_vnSeq = {position};
    vars.m_vnIndIDs = {7};
    EXPECT_THROW(FoldOf(vars), CInvalidArgument) << position;
  }
  CDVar vars = NoVariables();
  vars.m_vnType = {20};
  EXPECT_THROW(FoldOf(vars), CInvalidArgument);
}

TEST(FoldedResponses, HaveTheirKindPositionAndElements) {
  CDResp resps(static_cast<POD*>(nullptr));
  resps.m_vnType = {24, 24, 26, 25};
  resps.m_vnSeq = {0, 1, 0, 0};
  resps.m_vnIndIDs = {1, 1};
  resps.m_vnLinkIDs = {2};
  resps.m_vnSynIDs = {3};
  const Fold fold = FoldOf(resps);
  EXPECT_EQ(fold.ids, (Numbers{1, 3, 2}));
  EXPECT_EQ(fold.kinds, (Numbers{24, 26, 25}));
  EXPECT_EQ(fold.positions, (Numbers{0, 0, 0}));
  EXPECT_EQ(fold.sizes, (Numbers{2, 1, 1}));
  EXPECT_EQ(fold.entries, (Numbers{0, 2, 3}));
}

TEST(FoldedResponses, OfAnotherKindAreInvalid) {
  CDResp resps(static_cast<POD*>(nullptr));
  resps.m_vnType = {23};
  resps.m_vnSeq = {0};
  EXPECT_THROW(FoldOf(resps), CInvalidType);
}

}  // namespace
