#include <cmath>
#include <filesystem>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "tests/task/StartingPoints.h"

namespace {

/// Task 7 with a first point and, added by hand, constants and sets. The object that is asked has
/// neither a task nor a database: the arguments are what counts.
class Combinations : public StartingPoints {
 protected:
  Combinations() {
    vars.m_nID = sets.m_nID = 7;
    StorePoint({-1.0, -2.0, -3.0, -4.0});
  }

  void StorePoint(std::valarray<double> constants, int number = 0) {
    CDPoint point(study.Pod());
    point.m_nTaskID = 7;
    point.m_nPointID = number;
    point.m_nPointFlag = 5;
    point.m_IDVar = {11.0, 12.0};
    point.m_LDVar = {13.0};
    point.m_SDVar = {14.0};
    point.m_CDVar = std::move(constants);
    point.m_IResp = {15.0, 16.0};
    point.m_LResp = {17.0};
    point.m_SResp = {18.0};
    point.PutObject();
  }

  /// The constants of the task in the order of their positions: set, lower and upper bound.
  struct Constant {
    int set;
    double lower = -100.0;
    double upper = 100.0;
  };
  void Constants(const std::vector<Constant>& constants) {
    const std::size_t count = constants.size();
    vars.m_vnConstSet.resize(count);
    vars.m_vfConstLower.resize(count);
    vars.m_vfConstUpper.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
      vars.m_vnConstSet[i] = constants[i].set;
      vars.m_vfConstLower[i] = constants[i].lower;
      vars.m_vfConstUpper[i] = constants[i].upper;
    }
  }
  void Entry(int kind, int position) {
    vars.m_vnType.push_back(kind);
    vars.m_vnSeq.push_back(position);
  }
  void Set(int id, const Values& values) {
    sets.m_vnAuxID.push_back(id);
    sets.m_vstrName.push_back("set");
    sets.m_mdValues.emplace_back(values.begin(), values.end());
  }
  void Store() {
    vars.PutObject();
    sets.PutObject();
  }

  int Make(bool create = true) { return maker.SetupDPointsCombin(study.Pod(), 7, create); }
  int Count() { return Make(false); }
  void Copy(int from, int to, int position, double value, bool modify = true) {
    maker.CopyPointModifyConst(study.Pod(), 7, from, to, position, value, modify);
  }

  Values ConstantsOf(int number) { return ValuesOf(Point(number).m_CDVar); }
  /// What a copy of a point has from it.
  void ExpectRest(int number) {
    const CDPoint point = Point(number);
    EXPECT_EQ(point.m_nPointFlag, 5);
    EXPECT_EQ(ValuesOf(point.m_IDVar), (Values{11.0, 12.0}));
    EXPECT_EQ(ValuesOf(point.m_LDVar), (Values{13.0}));
    EXPECT_EQ(ValuesOf(point.m_SDVar), (Values{14.0}));
    EXPECT_EQ(ValuesOf(point.m_IResp), (Values{15.0, 16.0}));
    EXPECT_EQ(ValuesOf(point.m_LResp), (Values{17.0}));
    EXPECT_EQ(ValuesOf(point.m_SResp), (Values{18.0}));
  }
  void ExpectUntouched() {
    EXPECT_EQ(Counts(), (std::pair<long, long>{41, 42}));
    EXPECT_EQ(CountPoints(), 1);
    EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  }

  CDVar vars{study.Pod()};
  CDSet sets{study.Pod()};
  CTask maker;
};

// ---- No combinatorial variable ----

TEST_F(Combinations, OfNoConstantsAreNone) {
  Entry(20, 0);
  vars.PutObject();  // There is no record of sets, and none is looked for.
  EXPECT_EQ(Make(), 0);
  ExpectUntouched();
}

TEST_F(Combinations, OfConstantsWithoutASetAreNone) {
  Entry(23, 0);
  Entry(23, 1);
  Constants({{0}, {-5}});
  vars.PutObject();
  EXPECT_EQ(Make(), 0);
  EXPECT_EQ(Count(), 0);
  ExpectUntouched();
}

// ---- One combinatorial variable ----

TEST_F(Combinations, OfThreeValuesAreThreePoints) {
  Entry(23, 1);
  Constants({{0}, {4}, {0}, {0}});
  Set(4, {10.0, 20.0, 30.0});
  Store();
  EXPECT_EQ(Make(), 3);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(1), (Values{-1.0, 10.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{-1.0, 20.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(3), (Values{-1.0, 30.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 4);
  EXPECT_EQ(Counts(), Same(4));
  for (int number = 0; number <= 3; ++number) ExpectRest(number);
}

TEST_F(Combinations, OfOneValueAreOnePoint) {
  Entry(23, 0);
  Constants({{1}});
  Set(1, {10.0});
  Store();
  EXPECT_EQ(Make(), 1);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(1), (Values{10.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 2);
  EXPECT_EQ(Counts(), Same(2));
}

TEST_F(Combinations, TakeTheSetOfTheirID) {
  Entry(23, 0);
  Constants({{5}});
  Set(4, {10.0, 11.0, 12.0});
  Set(5, {50.0, 51.0});
  Set(6, {60.0});
  Store();
  EXPECT_EQ(Make(), 2);
  EXPECT_EQ(ConstantsOf(1), (Values{50.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{51.0, -2.0, -3.0, -4.0}));
}

TEST_F(Combinations, TakeTheValuesInTheOrderOfTheSet) {
  Entry(23, 0);
  Constants({{1}});
  Set(1, {3.0, 1.0, 2.0, 1.0});
  Store();
  EXPECT_EQ(Make(), 4);
  EXPECT_EQ(ConstantsOf(1), (Values{3.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(3), (Values{2.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(4), (Values{1.0, -2.0, -3.0, -4.0}));
}

TEST_F(Combinations, TakeValuesFromBoundToBound) {
  Entry(23, 0);
  Constants({{1, 2.0, 4.0}});
  Set(1, {1.0, std::nextafter(2.0, 0.0), 2.0, 3.0, 4.0, std::nextafter(4.0, 9.0), 5.0});
  Store();
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(Make(), 3);
  EXPECT_EQ(ConstantsOf(1), (Values{2.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{3.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(3), (Values{4.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 4);
  EXPECT_EQ(Counts(), Same(4));
}

TEST_F(Combinations, TakeAValueThatIsBothBounds) {
  Entry(23, 0);
  Constants({{1, 2.0, 2.0}});
  Set(1, {1.0, 2.0, 3.0});
  Store();
  EXPECT_EQ(Make(), 1);
  EXPECT_EQ(ConstantsOf(1), (Values{2.0, -2.0, -3.0, -4.0}));
}

// ---- Several ----

TEST_F(Combinations, OfTwoVariablesVaryTheFirstFastest) {
  Entry(23, 0);
  Entry(23, 1);
  Constants({{1}, {2}});
  Set(1, {1.0, 2.0});
  Set(2, {10.0, 20.0});
  Store();
  EXPECT_EQ(Make(), 4);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(1), (Values{1.0, 10.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{2.0, 10.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(3), (Values{1.0, 20.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(4), (Values{2.0, 20.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 5);
  EXPECT_EQ(Counts(), Same(5));
}

TEST_F(Combinations, FollowTheOrderOfTheEntries) {
  Entry(20, 1);
  Entry(23, 2);
  Entry(23, 0);
  Entry(21, 2);
  Entry(23, 1);
  Constants({{0}, {2}, {1}});
  Set(1, {1.0, 2.0});
  Set(2, {10.0, 20.0});
  Store();
  EXPECT_EQ(Make(), 4);
  EXPECT_EQ(ConstantsOf(1), (Values{-1.0, 10.0, 1.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{-1.0, 10.0, 2.0, -4.0}));
  EXPECT_EQ(ConstantsOf(3), (Values{-1.0, 20.0, 1.0, -4.0}));
  EXPECT_EQ(ConstantsOf(4), (Values{-1.0, 20.0, 2.0, -4.0}));
}

TEST_F(Combinations, OfThreeVariablesAreTheirProduct) {
  for (const int position : {0, 1, 2}) Entry(23, position);
  Constants({{1}, {2}, {1}});  // Two variables share a set.
  Set(1, {1.0, 2.0});
  Set(2, {10.0, 20.0, 30.0});
  Store();
  EXPECT_EQ(Count(), 12);
  EXPECT_EQ(Make(), 12);
  int number = 0;
  for (const double third : {1.0, 2.0}) {
    for (const double second : {10.0, 20.0, 30.0}) {
      for (const double first : {1.0, 2.0}) {
        EXPECT_EQ(ConstantsOf(++number), (Values{first, second, third, -4.0})) << number;
        ExpectRest(number);
      }
    }
  }
  EXPECT_EQ(CountPoints(), 13);
  EXPECT_EQ(Counts(), Same(13));
}

TEST_F(Combinations, ReplaceThePointsThatAreThere) {
  StorePoint({91.0, 92.0, 93.0, 94.0}, 1);
  StorePoint({91.0, 92.0, 93.0, 94.0}, 2);
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0, 2.0});
  Store();
  EXPECT_EQ(Make(), 2);
  EXPECT_EQ(ConstantsOf(1), (Values{1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{2.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 3);
}

// ---- Counted only ----

TEST_F(Combinations, ThatAreCountedOnlyAreNotMade) {
  Entry(23, 0);
  Entry(23, 1);
  Constants({{1}, {2, 0.0, 25.0}});
  Set(1, {1.0, 2.0, 3.0});
  Set(2, {10.0, 20.0, 30.0});
  Store();
  EXPECT_EQ(Count(), 6);
  ExpectUntouched();
  EXPECT_EQ(Make(), 6);
}

TEST_F(Combinations, ThatAreCountedOnlyNeedNoPointAndNoResult) {
  CDPoint::RemoveDPoints(study.Pod(), 7, 0);
  CResult result(study.Pod());
  result.m_nID = 7;
  ASSERT_TRUE(result.RemoveObject());
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0, 2.0});
  Store();
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(CountPoints(), 0);
}

// ---- No value ----

TEST_F(Combinations, OfAVariableWithoutAValueBetweenItsBoundsAreNone) {
  Entry(23, 0);
  Entry(23, 1);
  Entry(23, 2);
  Constants({{1}, {2, 11.0, 19.0}, {1}});
  Set(1, {1.0, 2.0});
  Set(2, {10.0, 20.0});
  Store();
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Make(), 0);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(1), (Values{1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(2), (Values{2.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 3);
}

TEST_F(Combinations, OfAnEmptySetAreNone) {
  Entry(23, 0);
  Constants({{1}});
  Set(1, {});
  Store();
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Make(), 0);
  EXPECT_EQ(ConstantsOf(1), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 2);
  EXPECT_EQ(Counts(), Same(2));
}

TEST_F(Combinations, OfNoEntryForTheirConstantAreTheBase) {
  Entry(20, 0);
  Constants({{1}});
  Set(1, {1.0, 2.0});
  Store();
  EXPECT_EQ(Make(), 1);
  EXPECT_EQ(ConstantsOf(1), (Values{-1.0, -2.0, -3.0, -4.0}));
}

TEST_F(Combinations, BeyondAnIntegerDoNotOverflow) {
  Values hundred(100);
  for (std::size_t i = 0; i < hundred.size(); ++i) hundred[i] = static_cast<double>(i);
  Constants(std::vector<Constant>(20, {1}));
  for (int position = 0; position < 20; ++position) Entry(23, position);
  Set(1, hundred);
  Store();
  EXPECT_GT(Count(), 100000000);
}

// ---- Failures ----

TEST_F(Combinations, NeedTheSetOfTheVariable) {
  Entry(23, 0);
  Constants({{3}});
  Set(2, {1.0});
  Set(4, {1.0});
  Store();
  for (const bool create : {false, true}) {
    try {
      Make(create);
      ADD_FAILURE();
    } catch (const CDiscreteSetErr& error) {
      EXPECT_STREQ(error.what(), "DiscreteSetErr");
    }
  }
}

template <class Action>
void ExpectNotGot(Action action) {
  try {
    action();
    ADD_FAILURE();
  } catch (const CGetObject& error) {
    EXPECT_STREQ(error.what(), "Could not get object");
  }
}

TEST_F(Combinations, NeedTheVariablesOfTheTask) {
  vars.m_nID = 8;
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0});
  Store();
  ExpectNotGot([this] { Make(); });
  ExpectNotGot([this] { Count(); });
  ExpectUntouched();
}

TEST_F(Combinations, NeedTheSetsOfTheTask) {
  sets.m_nID = 8;
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0});
  Store();
  ExpectNotGot([this] { Make(); });
  ExpectNotGot([this] { Count(); });
  ExpectUntouched();
}

TEST_F(Combinations, NeedTheFirstPoint) {
  CDPoint::RemoveDPoints(study.Pod(), 7, 0);
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0});
  Store();
  ExpectNotGot([this] { Make(); });
}

TEST_F(Combinations, NeedADatabase) {
  EXPECT_THROW(maker.SetupDPointsCombin(nullptr, 7, true), CNoDatabaseOpen);
  EXPECT_THROW(maker.CopyPointModifyConst(nullptr, 7, 0, 1, 0, 0.0, false), CNoDatabaseOpen);
}

TEST_F(Combinations, OfTablesThatDoNotFitAreRefused) {
  Set(1, {1.0, 2.0});
  sets.PutObject();
  Constants({{1}});
  for (const int position : {-1, 1, 2147483647}) {
    vars.m_vnType = {23};
    vars.m_vnSeq = {position};
    vars.PutObject();
    EXPECT_THROW(Count(), CInvalidArgument) << position;
  }
  vars.m_vnSeq = {};
  vars.PutObject();
  EXPECT_THROW(Count(), CInvalidArgument);
  vars.m_vnSeq = {0};
  vars.m_vfConstUpper.resize(0);
  vars.PutObject();
  EXPECT_THROW(Count(), CInvalidArgument);
}

TEST_F(Combinations, AreMadeUnderTheLock) {
  Entry(23, 0);
  Constants({{1}});
  Set(1, {1.0, 2.0});
  Store();
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Make(), CFileLock);
  EXPECT_THROW(Copy(0, 1, 0, 0.0), CFileLock);
  std::filesystem::remove(study.LockPath());
  EXPECT_EQ(Make(), 2);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
  const CLock lock(study.Pod(), 0);
  EXPECT_EQ(Make(), 2);
}

// ---- One copy ----

TEST_F(Combinations, CopyAPointUnchanged) {
  Copy(0, 5, 99, 77.0, false);
  EXPECT_EQ(ConstantsOf(5), (Values{-1.0, -2.0, -3.0, -4.0}));
  ExpectRest(5);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(CountPoints(), 2);
  EXPECT_EQ(Counts(), Same(6));
}

TEST_F(Combinations, CopyAPointWithAnotherConstant) {
  Copy(0, 3, 0, 71.0);
  Copy(3, 1, 3, 72.0);
  EXPECT_EQ(ConstantsOf(3), (Values{71.0, -2.0, -3.0, -4.0}));
  EXPECT_EQ(ConstantsOf(1), (Values{71.0, -2.0, -3.0, 72.0}));
  ExpectRest(1);
  EXPECT_EQ(CountPoints(), 3);
  EXPECT_EQ(Counts(), Same(2));
}

TEST_F(Combinations, CopyAPointOntoItself) {
  Copy(0, 0, 2, 71.0);
  EXPECT_EQ(ConstantsOf(0), (Values{-1.0, -2.0, 71.0, -4.0}));
  ExpectRest(0);
  EXPECT_EQ(CountPoints(), 1);
  EXPECT_EQ(Counts(), Same(1));
}

TEST_F(Combinations, CopyNoConstantOutsideThePoint) {
  for (const int position : {-1, 4, 5, 2147483647}) {
    try {
      Copy(0, 1, position, 71.0);
      ADD_FAILURE() << position;
    } catch (const CInvalidArgument& error) {
      EXPECT_STREQ(error.what(), "Function/method object is invalid");
    }
  }
  ExpectUntouched();
}

TEST_F(Combinations, CopyOnlyPointsThatAreThere) {
  ExpectNotGot([this] { Copy(1, 2, 0, 71.0); });
  ExpectNotGot([this] { maker.CopyPointModifyConst(study.Pod(), 8, 0, 1, 0, 71.0, true); });
  ExpectUntouched();
}

TEST_F(Combinations, CopyOnlyPointsOfATaskWithAResult) {
  CResult result(study.Pod());
  result.m_nID = 7;
  ASSERT_TRUE(result.RemoveObject());
  ExpectNotGot([this] { Copy(0, 1, 0, 71.0); });
}

}  // namespace
