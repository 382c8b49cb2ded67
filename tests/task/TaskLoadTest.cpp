#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "store/KestErr.h"
#include "tests/support/StudyRequired.h"
#include "tests/task/FunctionsStudy.h"
#include "tests/task/MakeStudy.h"

// Putting a task back into the definition.

namespace {

class TaskLoad : public FunctionsStudy {
 protected:
  void Load(int task = 1) { CTask::LoadTask(Pod(), task); }

  /// The objects in the file but for those of the definitions and the settings.
  std::map<long, std::string> OtherObjects() const {
    auto objects = Objects();
    for (const long definition : {1000, 2000, 18000, 19000}) {
      std::erase_if(objects, [&](const auto& o) { return WordAt(o.second, 0) == definition; });
    }
    return objects;
  }
};

// ---- What it replaces ----

TEST_F(TaskLoad, DefinitionsThatTheTaskDoesNotHaveAreRemoved) {
  Add(Input("later"));
  Add(Resp("later"));
  AddSet("later", {1.0});
  Load();
  const auto counts = ClassCounts();
  EXPECT_EQ(counts.at(1000), 6);
  EXPECT_EQ(counts.at(19000), 4);
  EXPECT_EQ(counts.at(2000), 5);
  EXPECT_EQ(counts.at(18000), 1);
  ExpectSoundFiles();
}

TEST_F(TaskLoad, ChangesSinceTheTaskWasMadeAreTakenBack) {
  auto x = Stored<CInput>(1);
  x.m_strName = "changed";
  x.m_uSize = 1;
  x.PutObject();
  CResp g(Pod());
  g.m_nID = 2;
  g.RemoveObject();
  Load();
  EXPECT_EQ(Stored<CInput>(1).m_strName, "x");
  EXPECT_EQ(Stored<CInput>(1).m_uSize, 3);
  EXPECT_EQ(Stored<CResp>(2).m_strName, "g");
}

TEST_F(TaskLoad, SettingsThatATaskDoesNotHoldReturnToTheirDefaults) {
  CDesignControl control = Control();
  control.m_nReusePoints = 1;
  control.m_fPointTol = 0.5;
  control.m_vnCheckTasks = {1};
  control.m_nTaskType = 3;
  control.PutObject();
  Load();
  EXPECT_EQ(Control().m_nReusePoints, 0);
  EXPECT_EQ(Control().m_fPointTol, 0.0);
  EXPECT_TRUE(Control().m_vnCheckTasks.empty());
  EXPECT_EQ(Control().m_nTaskType, 0);
}

TEST_F(TaskLoad, TasksAndPointsStayAsTheyAre) {
  SetPoints({{1, 1, 0, {0.125}, {}}});
  const auto before = OtherObjects();
  Load();
  EXPECT_EQ(OtherObjects(), before);
}

TEST_F(TaskLoad, ValuesAreThoseOfTheFirstPointNotOfTheRun) {
  CDPoint point = StoredPoint(1, 0);
  point.m_nPointID = 1;
  point.m_CDVar = {8.0};
  point.PutObject();
  Load();
  EXPECT_EQ(Stored<CInput>(2).m_fInitial, 7.0);
}

// ---- Objectives ----

TEST_F(TaskLoad, ObjectivesComeBack) {
  Load();
  EXPECT_EQ(Stored<CInput>(5).m_nObjective, 1);
  EXPECT_EQ(Stored<CInput>(5).m_fTarget, 1.0);
  EXPECT_EQ(Stored<CResp>(1).m_nObjective, 1);
  EXPECT_EQ(Stored<CResp>(1).m_fWeight, 3.0);
}

TEST_F(TaskLoad, DesignOfExperimentsHasNoneAndNeedsNoTableOfThem) {
  SetType(2);
  Make();
  ASSERT_EQ(RecordsOf(2).size(), 10U);
  Load(2);
  EXPECT_EQ(Control().m_nTaskType, 2);
  EXPECT_EQ(Stored<CInput>(5).m_nObjective, 0);
  EXPECT_EQ(Stored<CInput>(5).m_fWeight, 1.0);
  EXPECT_EQ(Stored<CResp>(1).m_nObjective, 0);
}

TEST_F(TaskLoad, DesignOfExperimentsDoesNotTakeThemFromATableThatIsThere) {
  auto task = Stored<CTask>(1);
  task.m_nType = 2;
  task.PutObject();
  Load();
  EXPECT_EQ(Stored<CInput>(5).m_nObjective, 0);
  EXPECT_EQ(Stored<CResp>(1).m_nObjective, 0);
}

// ---- Failures ----

TEST_F(TaskLoad, MissingTaskChangesNothing) {
  const auto before = Objects();
  for (const int id : {2, 0, -1}) {
    try {
      Load(id);
      ADD_FAILURE() << id;
    } catch (const CGetObject& error) {
      EXPECT_STREQ(error.what(), "Could not get object");
    }
  }
  EXPECT_EQ(Objects(), before);
  ExpectSoundFiles();
}

template <class Record>
Record KeyOf(POD* pod) {
  Record record(pod);
  record.m_nID = 1;
  return record;
}

TEST_F(TaskLoad, MissingTableChangesNothing) {
  auto task = KeyOf<CTask>(Pod());
  auto vars = KeyOf<CDVar>(Pod());
  auto resps = KeyOf<CDResp>(Pod());
  auto cons = KeyOf<CDCons>(Pod());
  auto terms = KeyOf<CDObj>(Pod());
  auto links = KeyOf<CDLink>(Pod());
  auto equations = KeyOf<CDEqn>(Pod());
  auto sets = KeyOf<CDSet>(Pod());
  CDPoint point(Pod());
  point.m_nTaskID = 1;
  for (vbPersistent* record : std::initializer_list<vbPersistent*>{
           &task, &vars, &resps, &cons, &terms, &links, &equations, &sets, &point}) {
    SCOPED_TRACE(record->GetVBClassName());
    ASSERT_TRUE(record->GetObject());
    record->RemoveObject();
    const auto before = Objects();
    EXPECT_THROW(Load(), CGetObject);
    EXPECT_EQ(Objects(), before);
    record->PutObject();
  }
  Load();
}

TEST_F(TaskLoad, TablesThatDoNotFitEndItAndWhatIsStoredStays) {
  auto resps = Stored<CDResp>(1);
  resps.m_mnLinkType[0][0] = 19;
  resps.PutObject();
  EXPECT_THROW(Load(), CInvalidType);
  const auto counts = ClassCounts();
  EXPECT_EQ(counts.at(1000), 6);
  EXPECT_EQ(counts.at(19000), 1);
  EXPECT_EQ(counts.count(2000), 0U);
  EXPECT_FALSE(std::filesystem::exists(study.LockPath()));
  ExpectSoundFiles();
}

TEST_F(TaskLoad, AsksForAStudy) {
  ExpectToRequireStudy(study, [](POD* pod) { CTask::LoadTask(pod, 1); });
}

using TaskLoadUnresolved = MakeStudy;

TEST_F(TaskLoadUnresolved, LinkOnACombinatorialVariableCanBeMadeButNotLoaded) {
  const int bars = AddSet("bars", {10.0, 20.0});
  const int link = AddLink("one", {0.0, 1.0});
  CInput b = Input("b", 6);
  b.m_nAuxID = bars;
  b.m_fUpper = 20.0;
  Add(b);
  Add(Input("x"));
  Add(Function(Input("y", 1), link, {-1}));
  Add(Objective("f"));
  MakeWell();
  EXPECT_EQ(AsRows(Stored<CDVar>(1).m_mnLinkType), (Rows{{0}}));
  EXPECT_THROW(CTask::LoadTask(Pod(), 1), CInvalidType);
}

}  // namespace
