#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/task/MakeStudy.h"

// What a task takes over from the control settings.

namespace {

class TaskMakeSettings : public MakeStudy {
 protected:
  void SetUp() override { AddSmallStudy(); }

  CTask MakeWith(const std::function<void(CDesignControl&)>& change) {
    CDesignControl control = Control();
    change(control);
    control.PutObject();
    MakeWell();
    return Stored<CTask>(1);
  }
};

TEST_F(TaskMakeSettings, AllGivenOnesAreTaken) {
  const CTask task = MakeWith([](CDesignControl& control) {
    control.m_strTitle = "Beam";
    control.m_strProgram = "beam";
    control.m_strArgs = "-v";
    control.m_strVarFile = "in";
    control.m_strRespFile = "out";
    control.m_nUserRoutine = 3;
    control.m_nUseApprox = 4;
    control.m_nApproxTask = 5;
    control.m_nRemote = 6;
    control.m_strUser = "ann";
    control.m_strHost = "far";
    control.m_strRemoteDir = "/scratch";
    control.m_nTimeout = 7;
  });
  EXPECT_EQ(task.m_strTitle, "Beam");
  EXPECT_EQ(task.m_strProgram, "beam");
  EXPECT_EQ(task.m_strArgs, "-v");
  EXPECT_EQ(task.m_strVarFile, "in");
  EXPECT_EQ(task.m_strRespFile, "out");
  EXPECT_EQ(task.m_nUserRoutine, 3);
  EXPECT_EQ(task.m_nUseApprox, 4);
  EXPECT_EQ(task.m_nApproxTask, 5);
  EXPECT_EQ(task.m_nRemote, 6);
  EXPECT_EQ(task.m_strUser, "ann");
  EXPECT_EQ(task.m_strHost, "far");
  EXPECT_EQ(task.m_strRemoteDir, "/scratch");
  EXPECT_EQ(task.m_nRemoteTimeout, 7);
}

TEST_F(TaskMakeSettings, EmptyTextsLeaveTheDefaultsOfTheTask) {
  const CTask task = MakeWith([](CDesignControl& control) {
    for (std::string* text :
         {&control.m_strTitle, &control.m_strProgram, &control.m_strArgs, &control.m_strVarFile,
          &control.m_strRespFile, &control.m_strSSHConnect, &control.m_strSSHCopyTo,
          &control.m_strSSHCopyFrom, &control.m_strUser, &control.m_strHost,
          &control.m_strRemoteDir}) {
      text->clear();
    }
  });
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
  EXPECT_EQ(task.m_nRemoteTimeout, -1);
}

void SetTemplates(CDesignControl& control, int useSSH) {
  control.m_nUseSSH = useSSH;
  control.m_strSSHConnect = "ssh connect";
  control.m_strSSHCopyTo = "ssh to";
  control.m_strSSHCopyFrom = "ssh from";
  control.m_strConnect = "connect";
  control.m_strCopyTo = "to";
  control.m_strCopyFrom = "from";
}

TEST_F(TaskMakeSettings, SSHTemplatesAreTakenWhenItIsUsed) {
  const CTask task = MakeWith([](CDesignControl& control) { SetTemplates(control, 2); });
  EXPECT_EQ(task.m_strConnectTemplate, "ssh connect");
  EXPECT_EQ(task.m_strCopyToTemplate, "ssh to");
  EXPECT_EQ(task.m_strCopyFromTemplate, "ssh from");
}

TEST_F(TaskMakeSettings, OtherTemplatesAreTakenWhenItIsNot) {
  const CTask task = MakeWith([](CDesignControl& control) { SetTemplates(control, 0); });
  EXPECT_EQ(task.m_strConnectTemplate, "connect");
  EXPECT_EQ(task.m_strCopyToTemplate, "to");
  EXPECT_EQ(task.m_strCopyFromTemplate, "from");
}

TEST_F(TaskMakeSettings, EachTemplateIsTakenByItself) {
  const CTask task = MakeWith([](CDesignControl& control) {
    SetTemplates(control, 1);
    control.m_strSSHCopyTo.clear();
  });
  EXPECT_EQ(task.m_strConnectTemplate, "ssh connect");
  EXPECT_EQ(task.m_strCopyToTemplate, "scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}");
  EXPECT_EQ(task.m_strCopyFromTemplate, "ssh from");
}

TEST_F(TaskMakeSettings, AllBlocksAreCopiedWhateverTheTypeOfTask) {
  const CTask task = MakeWith([](CDesignControl& control) {
    control.m_DGO.m_nITMAX = 11;
    control.m_DGO.m_nReserved = 9;
    control.m_RSA.m_nITMAX = 12;
    control.m_RSA.m_nReserved = 9;
    control.m_RSA.m_nSubModel = 9;
    control.m_DOE.m_nRetained = 13;
    control.m_NGO.m_nMaxIters = 14;
    control.m_NGO.m_nPopulation = 15;
    control.m_NGO.m_nOldPopulation = 9;
    control.m_ANL.m_nRandomPoints = 16;
  });
  EXPECT_EQ(task.m_DGO.m_nITMAX, 11);
  EXPECT_EQ(task.m_RSA.m_nITMAX, 12);
  EXPECT_EQ(task.m_DOE.m_nRetained, 13);
  EXPECT_EQ(task.m_NGO.m_nMaxIters, 14);
  EXPECT_EQ(task.m_ANL.m_nRandomPoints, 16);
  // No variable is discrete.
  EXPECT_EQ(task.m_DGO.m_nReserved, 0);
  EXPECT_EQ(task.m_RSA.m_nReserved, 0);
  EXPECT_EQ(task.m_RSA.m_nSubModel, 0);
  EXPECT_EQ(task.m_NGO.m_nOldPopulation, 15);
  // The user's settings stay as they are.
  EXPECT_EQ(Control().m_DGO.m_nReserved, 9);
  EXPECT_EQ(Control().m_NGO.m_nOldPopulation, 9);
}

TEST_F(TaskMakeSettings, ADiscreteVariableIsTold) {
  Add(Input("k", 5));
  const CTask task = MakeWith([](CDesignControl&) {});
  EXPECT_EQ(task.m_DGO.m_nReserved, 1);
  EXPECT_EQ(task.m_RSA.m_nReserved, 1);
}

TEST_F(TaskMakeSettings, ACombinatorialVariableIsNoDiscreteOne) {
  CInput choice = Input("choice", 6);
  choice.m_nAuxID = AddSet("set", {0.0, 1.0});
  Add(choice);
  const CTask task = MakeWith([](CDesignControl&) {});
  EXPECT_EQ(task.m_DGO.m_nReserved, 0);
  EXPECT_EQ(task.m_RSA.m_nReserved, 0);
}

TEST_F(TaskMakeSettings, SubModelOfTheInitialDesign) {
  SetPoints(
      {{1, 1, 0, {0.0}, {0.0, 0.0}}, {1, 1, 0, {0.0}, {0.0, 0.0}}, {0, 1, 0, {0.0}, {0.0, 0.0}}});
  struct Case {
    int initial, subModel;
  };
  for (const auto& [initial, subModel] : {Case{5, 10}, Case{9, 0}, Case{99, 0}, Case{11, 2}}) {
    CDesignControl control = Control();
    control.m_RSA.m_nInitialDOE = initial;
    control.PutObject();
    EXPECT_EQ(MakeWell().m_RSA.m_nSubModel, subModel) << initial;
  }
}

TEST_F(TaskMakeSettings, ResponseSurfaceTakesTheLimitsThatItsCheckFillsIn) {
  const CTask task = MakeWith([](CDesignControl& control) { control.m_nTaskType = 1; });
  // For one variable and order 3.
  EXPECT_EQ(task.m_RSA.m_nMinPoints, 3);
  EXPECT_EQ(task.m_RSA.m_nMaxPoints, 103);
}

TEST_F(TaskMakeSettings, ResponseSurfaceWithoutResponsesOfItsOwnBecomesAGradientTask) {
  const int twice = AddLink("twice", {0.0, 2.0});
  for (int id = 1; id <= 2; ++id) {
    CResp resp(Pod());
    resp.m_nID = id;
    ASSERT_TRUE(resp.GetObject());
    resp.m_nType = 1;
    resp.m_nAuxID = twice;
    resp.m_vnArg = {-1};
    resp.m_vnIdx = {0};
    resp.PutObject();
  }
  SetType(1);
  const CTask task = Make();
  EXPECT_EQ(PrintedLines(),
            Between({"LWarn: (Design Control): Independent responses not defined.",
                     "LPrint:      Approximate Optimization (RSA) cannot generate approximations\n",
                     "LPrint:      without independent responses.\n",
                     "LPrint:      Switching to Direct Optimization (DGO).\n\n"}));
  EXPECT_EQ(task.m_nType, 0);
  EXPECT_EQ(Stored<CTask>(1).m_nType, 0);
}

}  // namespace
