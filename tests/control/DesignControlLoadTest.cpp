#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "store/KestErr.h"
#include "task/Task.h"
#include "tests/control/BlockPieces.h"
#include "tests/support/Study.h"
#include "tests/support/StudyRequired.h"

// The settings that a task was made with.

namespace {

class DesignControlLoad : public testing::Test {
 protected:
  DesignControlLoad() { task.m_nID = 7; }

  CDesignControl Load() {
    task.PutObject();
    CDesignControl control(study.Pod());
    control.LoadDesignControl(7);
    return control;
  }
  CDesignControl Stored() {
    CDesignControl control(study.Pod());
    EXPECT_TRUE(control.GetObject());
    return control;
  }

  Study study;
  CTask task{study.Pod()};
};

TEST_F(DesignControlLoad, TakesOverProgramAndFiles) {
  task.m_nType = 3;
  task.m_strTitle = "T";
  task.m_strProgram = "P";
  task.m_nUserRoutine = 4;
  task.m_nUseApprox = 5;
  task.m_nApproxTask = 6;
  task.m_strArgs = "A";
  task.m_strVarFile = "V";
  task.m_strRespFile = "R";
  Load();
  const CDesignControl control = Stored();
  EXPECT_EQ(control.m_nTaskType, 3);
  EXPECT_EQ(control.m_strTitle, "T");
  EXPECT_EQ(control.m_strProgram, "P");
  EXPECT_EQ(control.m_nUserRoutine, 4);
  EXPECT_EQ(control.m_nUseApprox, 5);
  EXPECT_EQ(control.m_nApproxTask, 6);
  EXPECT_EQ(control.m_strArgs, "A");
  EXPECT_EQ(control.m_strVarFile, "V");
  EXPECT_EQ(control.m_strRespFile, "R");
}

TEST_F(DesignControlLoad, TakesTheTemplatesForBothWaysToConnect) {
  task.m_nRemote = 8;
  task.m_strConnectTemplate = "connect";
  task.m_strCopyToTemplate = "to";
  task.m_strCopyFromTemplate = "from";
  task.m_strUser = "U";
  task.m_strHost = "H";
  task.m_strRemoteDir = "D";
  task.m_nRemoteTimeout = 9;
  CDesignControl old(study.Pod());
  old.m_nUseSSH = 0;
  old.PutObject();
  Load();
  const CDesignControl control = Stored();
  EXPECT_EQ(control.m_nRemote, 8);
  EXPECT_EQ(control.m_nUseSSH, 1);
  EXPECT_EQ(control.m_strSSHConnect, "connect");
  EXPECT_EQ(control.m_strSSHCopyTo, "to");
  EXPECT_EQ(control.m_strSSHCopyFrom, "from");
  EXPECT_EQ(control.m_strConnect, "connect");
  EXPECT_EQ(control.m_strCopyTo, "to");
  EXPECT_EQ(control.m_strCopyFrom, "from");
  EXPECT_EQ(control.m_strUser, "U");
  EXPECT_EQ(control.m_strHost, "H");
  EXPECT_EQ(control.m_strRemoteDir, "D");
  EXPECT_EQ(control.m_nTimeout, 9);
}

TEST_F(DesignControlLoad, TurnsTheUseOfSSHOn) {
  task.PutObject();
  CDesignControl control(study.Pod());
  control.m_nUseSSH = 0;
  control.LoadDesignControl(7);
  EXPECT_EQ(control.m_nUseSSH, 1);
  EXPECT_EQ(Stored().m_nUseSSH, 1);
}

TEST_F(DesignControlLoad, TakesAllBlocksAsTheyAreInTheTask) {
  ChangeAll(task, EmbeddedFields<CTask>(TaskVersion));
  const CDesignControl control = Load();
  ExpectAll(control, EmbeddedFields<CDesignControl>(ControlVersion), true);
  ExpectAll(Stored(), EmbeddedFields<CDesignControl>(ControlVersion), true);
}

TEST_F(DesignControlLoad, TakesEmptyTextsToo) {
  task.m_strProgram = task.m_strUser = task.m_strConnectTemplate = "";
  task.PutObject();
  CDesignControl control(study.Pod());
  control.m_strTitle = control.m_strProgram = control.m_strUser = control.m_strConnect = "old";
  control.LoadDesignControl(7);
  EXPECT_EQ(control.m_strTitle, "");
  EXPECT_EQ(control.m_strProgram, "");
  EXPECT_EQ(control.m_strUser, "");
  EXPECT_EQ(control.m_strConnect, "");
}

TEST_F(DesignControlLoad, LeavesTheReuseOfPointsAsItIs) {
  task.PutObject();
  CDesignControl control(study.Pod());
  control.m_nReusePoints = 1;
  control.m_fPointTol = 0.5;
  control.m_vnCheckTasks = {3, 4};
  control.LoadDesignControl(7);
  EXPECT_EQ(Stored().m_nReusePoints, 1);
  EXPECT_EQ(Stored().m_fPointTol, 0.5);
  EXPECT_EQ(Stored().m_vnCheckTasks, (std::vector<vbINT32>{3, 4}));
}

TEST_F(DesignControlLoad, MissingTaskChangesNothing) {
  Load();
  CDesignControl control = Stored();
  control.m_strTitle = "mine";
  control.PutObject();
  for (const int id : {8, 0, -7}) {
    try {
      control.LoadDesignControl(id);
      ADD_FAILURE() << id;
    } catch (const CGetObject& error) {
      EXPECT_STREQ(error.what(), "Could not get object");
    }
  }
  EXPECT_EQ(control.m_strTitle, "mine");
  EXPECT_EQ(Stored().m_strTitle, "mine");
}

TEST_F(DesignControlLoad, AsksForAStudy) {
  ExpectToRequireStudy(study, [](POD* pod) { CDesignControl(pod).LoadDesignControl(7); });
}

}  // namespace
