#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "control/DesignControl.h"
#include "definition/GPoint.h"
#include "store/KestErr.h"
#include "tests/control/BlockPieces.h"
#include "tests/support/Bytes.h"
#include "tests/task/Definitions.h"

namespace {

/// A text of the control settings and the text of the task that it goes to.
struct CopiedText {
  std::string CDesignControl::*from;
  std::string CTask::*to;
};

const std::vector<CopiedText>& TextsOfTheStudy() {
  static const std::vector<CopiedText> texts{
      {&CDesignControl::m_strTitle, &CTask::m_strTitle},
      {&CDesignControl::m_strProgram, &CTask::m_strProgram},
      {&CDesignControl::m_strArgs, &CTask::m_strArgs},
      {&CDesignControl::m_strVarFile, &CTask::m_strVarFile},
      {&CDesignControl::m_strRespFile, &CTask::m_strRespFile},
      {&CDesignControl::m_strUser, &CTask::m_strUser},
      {&CDesignControl::m_strHost, &CTask::m_strHost},
      {&CDesignControl::m_strRemoteDir, &CTask::m_strRemoteDir}};
  return texts;
}

const std::vector<CopiedText>& TemplatesWithSSH() {
  static const std::vector<CopiedText> texts{
      {&CDesignControl::m_strSSHConnect, &CTask::m_strConnectTemplate},
      {&CDesignControl::m_strSSHCopyTo, &CTask::m_strCopyToTemplate},
      {&CDesignControl::m_strSSHCopyFrom, &CTask::m_strCopyFromTemplate}};
  return texts;
}

const std::vector<CopiedText>& TemplatesWithoutSSH() {
  static const std::vector<CopiedText> texts{
      {&CDesignControl::m_strConnect, &CTask::m_strConnectTemplate},
      {&CDesignControl::m_strCopyTo, &CTask::m_strCopyToTemplate},
      {&CDesignControl::m_strCopyFrom, &CTask::m_strCopyFromTemplate}};
  return texts;
}

struct CopiedNumber {
  vbINT32 CDesignControl::*from;
  vbINT32 CTask::*to;
};

class TaskSettings : public Definitions {
 protected:
  void PutControl(const std::function<void(CDesignControl&)>& change) {
    CDesignControl control(study.Pod());
    change(control);
    control.PutObject();
  }
  /// The user's points, of which those with a 1 are used.
  void PutPoints(const Ints& used) {
    CGPoint points(study.Pod());
    points.m_vnUsed = used;
    points.m_vnRun = points.m_vnLocked = Ints(used.size());
    points.m_vDVars = points.m_vResps = FloatRows(used.size());
    points.PutObject();
  }

  /// Gives each text of `list` in the settings a word of its own, but for the one numbered `empty`.
  void PutTexts(const std::vector<CopiedText>& list, std::size_t empty, long useSSH) {
    PutControl([&](CDesignControl& control) {
      control.m_nUseSSH = useSSH;
      for (std::size_t i = 0; i < list.size(); ++i) {
        control.*list[i].from = i == empty ? "" : "text " + std::to_string(i);
      }
    });
  }
  /// Copies `list` with each text empty once and once with none empty. All other templates in the
  /// settings are empty.
  void ExpectCopied(const std::vector<CopiedText>& list, long useSSH = 1) {
    for (std::size_t empty = 0; empty <= list.size(); ++empty) {
      SCOPED_TRACE(empty);
      PutTexts(list, empty, useSSH);
      CTask task = Task();
      for (const auto& text : list) task.*text.to = "kept";
      task.SetupTask(1, 0, 0, 0, 0);
      for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(task.*list[i].to, i == empty ? "kept" : "text " + std::to_string(i));
      }
    }
  }

  /// The failure of making the settings, whose one message is `text`.
  void ExpectNoTask(const std::string& text) {
    ClearLog();
    EXPECT_THROW(Task().SetupTask(1, 0, 0, 0, 0), CMakeTask);
    EXPECT_EQ(Messages(), (LogLines{{"LError", text, ""}}));
  }
};

// ---- Type, program, files ----

TEST_F(TaskSettings, TakeTheType) {
  for (const int type : {0, 1, 2, 3, 4}) {
    PutControl([type](CDesignControl& control) { control.m_nTaskType = type; });
    CTask task = Task();
    task.m_nType = 9;
    task.SetupTask(1, 0, 0, 0, 0);
    EXPECT_EQ(task.m_nType, type);
  }
}

TEST_F(TaskSettings, TakeTextsUnlessTheyAreEmpty) {
  ExpectCopied(TextsOfTheStudy());
}

TEST_F(TaskSettings, LeaveTheTasksDefaultsForEmptyTexts) {
  PutControl([](CDesignControl& control) {
    control.m_strProgram = control.m_strVarFile = control.m_strRespFile = "";
  });
  CTask task = Task();
  task.SetupTask(1, 0, 0, 0, 0);
  EXPECT_EQ(task.m_strTitle, "");
  EXPECT_EQ(task.m_strProgram, "analyze.exe");
  EXPECT_EQ(task.m_strArgs, "");
  EXPECT_EQ(task.m_strVarFile, "dvar.kef");
  EXPECT_EQ(task.m_strRespFile, "resp.kef");
  EXPECT_EQ(task.m_strConnectTemplate, "ssh ${RMT_HOST} -x -l ${USER} \"${COMMAND}\"");
  EXPECT_EQ(task.m_strCopyToTemplate, "scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}");
  EXPECT_EQ(task.m_strCopyFromTemplate, "scp -r ${USER}@${RMT_HOST}:${RMT_DIR}${FILE} .");
  EXPECT_EQ(task.m_strUser, "user");
  EXPECT_EQ(task.m_strHost, "host");
  EXPECT_EQ(task.m_strRemoteDir, "rmtdir");
}

TEST_F(TaskSettings, TakeNumbersAsTheyAre) {
  const std::vector<CopiedNumber> numbers{{&CDesignControl::m_nUserRoutine, &CTask::m_nUserRoutine},
                                          {&CDesignControl::m_nUseApprox, &CTask::m_nUseApprox},
                                          {&CDesignControl::m_nApproxTask, &CTask::m_nApproxTask},
                                          {&CDesignControl::m_nRemote, &CTask::m_nRemote},
                                          {&CDesignControl::m_nTimeout, &CTask::m_nRemoteTimeout}};
  for (const int base : {0, -5, 70}) {
    PutControl([&](CDesignControl& control) {
      for (int i = 0; i < 5; ++i) control.*numbers[static_cast<std::size_t>(i)].from = base * i;
    });
    CTask task = Task();
    for (const auto& number : numbers) task.*number.to = 99;
    task.SetupTask(1, 0, 0, 0, 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(task.*numbers[static_cast<std::size_t>(i)].to, base * i);
  }
}

// ---- Remote execution ----

TEST_F(TaskSettings, TakeTheTemplatesOfSSHUnlessTheyAreEmpty) {
  ExpectCopied(TemplatesWithSSH(), 1);
}

TEST_F(TaskSettings, TakeTheOtherTemplatesUnlessTheyAreEmpty) {
  ExpectCopied(TemplatesWithoutSSH(), 0);
}

TEST_F(TaskSettings, ForgetTheTemplatesOfTheOtherWay) {
  for (const int useSSH : {0, 1, -1, 2}) {
    SCOPED_TRACE(useSSH);
    PutControl([useSSH](CDesignControl& control) {
      control.m_nUseSSH = useSSH;
      for (const auto& text : TemplatesWithSSH()) control.*text.from = "ssh";
      for (const auto& text : TemplatesWithoutSSH()) control.*text.from = "plain";
    });
    CTask task = Task();
    task.SetupTask(1, 0, 0, 0, 0);
    const std::string expected = useSSH == 0 ? "plain" : "ssh";
    EXPECT_EQ(task.m_strConnectTemplate, expected);
    EXPECT_EQ(task.m_strCopyToTemplate, expected);
    EXPECT_EQ(task.m_strCopyFromTemplate, expected);
  }
}

TEST_F(TaskSettings, TakeNoTemplateOfTheOtherWayInPlaceOfAnEmptyOne) {
  PutControl([](CDesignControl& control) {
    control.m_nUseSSH = 1;
    for (const auto& text : TemplatesWithoutSSH()) control.*text.from = "plain";
  });
  CTask task = Task();
  for (const auto& text : TemplatesWithSSH()) task.*text.to = "kept";
  task.SetupTask(1, 0, 0, 0, 0);
  for (const auto& text : TemplatesWithSSH()) EXPECT_EQ(task.*text.to, "kept");
}

// ---- The control blocks ----

TEST_F(TaskSettings, TakeEveryFieldOfTheBlocks) {
  PutControl([](CDesignControl& control) {
    ChangeAll(control.m_DGO, GradientFields());
    ChangeAll(control.m_RSA, SurfaceFields());
    ChangeAll(control.m_DOE, DesignFields());
    ChangeAll(control.m_NGO, NonGradientFields());
    ChangeAll(control.m_ANL, AnalysisFields());
    control.m_RSA.m_nInitialDOE = 5;
    control.m_NGO.m_nStart = 10;
  });
  CDesignControl control(study.Pod());
  ASSERT_TRUE(control.GetObject());
  CTask task = Task();
  task.SetupTask(1, 0, 1, 0, 0);
  EXPECT_EQ(task.m_RSA.m_nInitialDOE, 5);
  EXPECT_EQ(task.m_RSA.m_nSubModel, 10);
  EXPECT_EQ(task.m_NGO.m_nStart, 10);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, control.m_NGO.m_nPopulation);
  // What the settings decide otherwise is put back for the comparison of all the rest.
  task.m_DGO.m_nReserved = control.m_DGO.m_nReserved;
  task.m_RSA.m_nReserved = control.m_RSA.m_nReserved;
  task.m_RSA.m_nSubModel = control.m_RSA.m_nSubModel;
  task.m_NGO.m_nOldPopulation = control.m_NGO.m_nOldPopulation;
  for (const auto& field : SurfaceFields()) {
    CRSAControl changed;
    field.change(changed);
    if (changed.m_nInitialDOE == CRSAControl().m_nInitialDOE) field.expect(task.m_RSA, true);
  }
  for (const auto& field : NonGradientFields()) {
    CNGOControl changed;
    field.change(changed);
    if (changed.m_nStart == CNGOControl().m_nStart) field.expect(task.m_NGO, true);
  }
  ExpectAll(task.m_DGO, GradientFields(), true);
  ExpectAll(task.m_DOE, DesignFields(), true);
  ExpectAll(task.m_ANL, AnalysisFields(), true);
}

TEST_F(TaskSettings, FlagADiscreteProblem) {
  PutControl([](CDesignControl& control) {
    control.m_DGO.m_nReserved = 3;
    control.m_RSA.m_nReserved = 4;
  });
  for (const auto& [discrete, flag] : {std::pair{-1, 0}, {0, 0}, {1, 1}, {2, 1}, {100, 1}}) {
    SCOPED_TRACE(discrete);
    CTask task = Task();
    task.SetupTask(1, 0, discrete, 0, 0);
    EXPECT_EQ(task.m_DGO.m_nReserved, flag);
    EXPECT_EQ(task.m_RSA.m_nReserved, flag);
  }
}

// ---- The sub-model of response surfaces ----

TEST_F(TaskSettings, ChooseTheSubModelByTheInitialDesign) {
  for (const auto& [design, model] : {std::pair{5, 10}, {9, 0}, {99, 0}}) {
    SCOPED_TRACE(design);
    PutControl([design = design](CDesignControl& control) {
      control.m_RSA.m_nInitialDOE = design;
      control.m_RSA.m_nSubModel = 77;
    });
    CTask task = Task();
    task.SetupTask(1, 0, 0, 0, 0);
    EXPECT_EQ(task.m_RSA.m_nSubModel, model);
    EXPECT_EQ(task.m_RSA.m_nInitialDOE, design);
  }
}

TEST_F(TaskSettings, TakeTheNumberOfUsedPointsForASubModel) {
  PutControl([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 11; });
  PutPoints({1, 0, 1, 1, 2});
  CTask task = Task();
  task.SetupTask(1, 0, 0, 0, 0);
  EXPECT_EQ(task.m_RSA.m_nSubModel, 3);
  PutPoints({0, 1});
  task.SetupTask(1, 0, 0, 0, 0);
  EXPECT_EQ(task.m_RSA.m_nSubModel, 1);
}

TEST_F(TaskSettings, OfASurfaceFromTheUsersPointsNeedSuchPoints) {
  PutControl([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 11; });
  const std::string text =
      "User defined DOE was specified for RSA but no user defined design points exist!\n";
  ExpectNoTask(text);
  PutPoints({0, 2});
  ExpectNoTask(text);
}

TEST_F(TaskSettings, OfASurfaceFromTheUsersPointsNeedTheirTable) {
  PutControl([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 11; });
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  ClearLog();
  EXPECT_THROW(Task().SetupTask(1, 0, 0, 0, 0), CGetObject);
  EXPECT_EQ(Messages(), (LogLines{}));
}

TEST_F(TaskSettings, OfASurfaceFromAnUnknownDesignAreRefused) {
  for (const int design : {-1, 0, 1, 4, 6, 8, 10, 12, 13, 98, 100}) {
    SCOPED_TRACE(design);
    PutControl([design](CDesignControl& control) { control.m_RSA.m_nInitialDOE = design; });
    ExpectNoTask("Unknown DOE design method (code = " + std::to_string(design) +
                 ") was specified for RSA.\n");
  }
}

// ---- The constraints of a design of experiments ----

TEST_F(TaskSettings, KeepTheConstraintsThatFilterRandomOrUserPoints) {
  for (const int filter : {0, 1, -1, 5}) {
    for (const int method : {0, 1, 9, 10, 11, 12}) {
      SCOPED_TRACE(std::to_string(filter) + " " + std::to_string(method));
      PutControl([=](CDesignControl& control) {
        control.m_DOE.m_nFilter = filter;
        control.m_DOE.m_nMethod = method;
      });
      CTask task = Task();
      task.m_uNumCons = 9UL;
      task.SetupTask(1, 4, 0, 0, 0);
      const bool filters = filter != 0 && (method == 10 || method == 11);
      EXPECT_EQ(task.m_uNumCons, filters ? 4U : 0U);
      EXPECT_EQ(task.m_DOE.m_nFilter, filter);
      EXPECT_EQ(task.m_DOE.m_nMethod, method);
    }
  }
}

// ---- The population ----

TEST_F(TaskSettings, TakeTheUsersPopulation) {
  PutControl([](CDesignControl& control) {
    control.m_NGO.m_nPopulation = 64;
    control.m_NGO.m_nOldPopulation = 5;
  });
  CTask task = Task();
  task.SetupTask(1, 0, 0, 0, 0);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, 64);
  EXPECT_EQ(task.m_NGO.m_nPopulation, 64);
}

TEST_F(TaskSettings, TakeTheNumberOfUsedPointsForAPopulation) {
  PutControl([](CDesignControl& control) {
    control.m_NGO.m_nStart = 11;
    control.m_NGO.m_nPopulation = 64;
  });
  PutPoints({1, 0, 1});
  CTask task = Task();
  task.SetupTask(1, 0, 0, 0, 0);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, 2);
  EXPECT_EQ(task.m_NGO.m_nPopulation, 64);
}

TEST_F(TaskSettings, OfAPopulationFromTheUsersPointsNeedSuchPoints) {
  PutControl([](CDesignControl& control) { control.m_NGO.m_nStart = 11; });
  const std::string text =
      "User defined DOE was specified for NGO but no user defined design points exist!\n";
  ExpectNoTask(text);
  PutPoints({0});
  ExpectNoTask(text);
}

TEST_F(TaskSettings, OfAPopulationFromTheUsersPointsNeedTheirTable) {
  PutControl([](CDesignControl& control) { control.m_NGO.m_nStart = 11; });
  ASSERT_TRUE(CGPoint(study.Pod()).RemoveObject());
  EXPECT_THROW(Task().SetupTask(1, 0, 0, 0, 0), CGetObject);
}

TEST_F(TaskSettings, OfAPopulationFromAnUnknownDesignAreRefused) {
  for (const int start : {-1, 0, 9, 12, 99}) {
    SCOPED_TRACE(start);
    PutControl([start](CDesignControl& control) { control.m_NGO.m_nStart = start; });
    ExpectNoTask("Unknown DOE design method (code = " + std::to_string(start) +
                 ") was specified for NGO.\n");
  }
}

TEST_F(TaskSettings, StopAtTheFirstFault) {
  PutControl([](CDesignControl& control) {
    control.m_RSA.m_nInitialDOE = 3;
    control.m_NGO.m_nStart = 4;
  });
  ExpectNoTask("Unknown DOE design method (code = 3) was specified for RSA.\n");
}

// ---- As a whole ----

TEST_F(TaskSettings, WriteNothing) {
  PutControl([](CDesignControl& control) {
    control.m_DOE.m_nFilter = 5;
    control.m_DOE.m_nMethod = 10;
  });
  const std::string before = ReadBytes(study.DataPath());
  ClearLog();
  CTask task = Task();
  task.SetupTask(3, 4, 2, 1, 1);
  EXPECT_EQ(Log(), (LogLines{}));
  EXPECT_EQ(ReadBytes(study.DataPath()), before);
  EXPECT_FALSE(IsStored<CTask>());
}

TEST_F(TaskSettings, GiveTheLockBackWhetherOrNotTheyFail) {
  CDesignControl(study.Pod()).PutObject();
  Task().SetupTask(1, 0, 0, 0, 0);
  EXPECT_FALSE(study.Pod()->LockHeld());
  PutControl([](CDesignControl& control) { control.m_RSA.m_nInitialDOE = 3; });
  EXPECT_THROW(Task().SetupTask(1, 0, 0, 0, 0), CMakeTask);
  EXPECT_FALSE(study.Pod()->LockHeld());
}

TEST_F(TaskSettings, LeaveWhatIsNoneOfThem) {
  CDesignControl(study.Pod()).PutObject();
  CTask task = Task();
  task.m_uNumIndDV = 31UL;
  task.m_uNumObj = 32UL;
  task.m_uNumRandDV = 33UL;
  task.m_uNumRandResp = 34UL;
  task.m_uNumPoints = 35UL;
  task.SetupTask(1, 2, 3, 4, 5);
  EXPECT_EQ(task.m_nID, 7);
  EXPECT_EQ(task.m_uNumIndDV, 31U);
  EXPECT_EQ(task.m_uNumObj, 32U);
  EXPECT_EQ(task.m_uNumRandDV, 33U);
  EXPECT_EQ(task.m_uNumRandResp, 34U);
  EXPECT_EQ(task.m_uNumPoints, 35U);
}

TEST_F(TaskSettings, NeedTheControlSettings) {
  CDesignControl(study.Pod()).RemoveObject();
  ClearLog();
  EXPECT_THROW(Task().SetupTask(1, 0, 0, 0, 0), CObjectNotFound);
  EXPECT_EQ(Messages(), (LogLines{}));
}

TEST_F(TaskSettings, NeedADatabase) {
  EXPECT_THROW(CTask().SetupTask(1, 0, 0, 0, 0), CNoDatabaseOpen);
}

TEST_F(TaskSettings, FailAsATaskThatCannotBeCreated) {
  PutControl([](CDesignControl& control) { control.m_NGO.m_nStart = 0L; });
  try {
    Task().SetupTask(1, 0, 0, 0, 0);
    FAIL() << "no exception";
  } catch (const CEngErr& failure) {
    EXPECT_STREQ(failure.what(), "Task could not be created - data error found");
  }
}

}  // namespace
