#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/task/MakeStudy.h"

namespace {

// ---- Faults that are found before anything is written ----

class TaskMakeFaults : public MakeStudy {
 protected:
  /// Expects the lines between start and end, and a data file with the very same objects.
  void ExpectNothingWritten(const Names& lines) {
    const auto before = Objects();
    const CTask task = Make();
    EXPECT_EQ(PrintedLines(), Between(lines));
    EXPECT_EQ(task.m_nID, 0);
    EXPECT_EQ(Objects(), before);
    ExpectSoundFiles();
  }
};

TEST_F(TaskMakeFaults, EmptyStudyHasNoVariables) {
  ExpectNothingWritten({"LError: (Make Task) : 0 independent design variables\n",
                        "LPrint:      Every task needs at least 1 independent design variable!\n"});
}

TEST_F(TaskMakeFaults, LinkedVariablesAreNotIndependent) {
  const int link = AddLink("twice", {0.0, 2.0});
  Add(Input("c", 3));
  Add(Function(Input("y", 1), link, {-1}));
  Add(Objective("f"));
  ExpectNothingWritten({"LError: (Make Task) : 0 independent design variables\n",
                        "LPrint:      Every task needs at least 1 independent design variable!\n"});
}

TEST_F(TaskMakeFaults, NoResponsesIsToldBeforeAnyCheck) {
  CInput x = Input("x");
  x.m_fLower = 2.0;  // a fault of its own, which isn't looked for
  Add(x);
  ExpectNothingWritten({"LError: (Make Task) : 0 design responses defined\n",
                        "LPrint:      Every task needs at least 1 design response!\n"});
}

class TaskMakeFourFaults : public TaskMakeFaults {
 protected:
  void AddFaultySettings() {
    CDesignControl control = Control();
    control.m_DGO.m_nMultiStart = 1;
    control.PutObject();  // and no objective is defined
  }
  void AddFaultyInput() {
    CInput x = Input("x");
    x.m_nUserScale = 1;
    x.m_fScale = 0.0;
    Add(x);
  }
  void AddFaultyResp() {
    CResp f = Constrained("f", -5.0);
    f.m_nHasLower = 1;
    f.m_fLower = 5.0;
    Add(f);
  }
  void AddFaultyPoints() { SetPoints({{1, 1, 0, {0.0, 1.0}, {0.0, 0.0, 0.0}}}); }

  const Names kFourFaults{
      "LError: (Design Control): Objective not defined.\n",
      "LError: (Check Inputs) : Invalid scale factor for Input (x - index=1).  The scale factor "
      "must be > 0\n",
      "LError: (Check Resps) : Lower bound > Upper bound for Response (f - index=1)\n",
      "LError: (Design Points): Number of design variables (1) does not match\n",
      "LPrint:      the number of columns (2) in the design matrix.\n\n",
      "LError: (Design Points): Number of design responses (1) does not match\n",
      "LPrint:      the number of columns (3) in the design matrix.\n\n"};
};

TEST_F(TaskMakeFourFaults, AreAllReportedInOneAttempt) {
  AddFaultySettings();
  AddFaultyInput();
  AddFaultyResp();
  AddFaultyPoints();
  Names lines = kFourFaults;
  lines.push_back(kNotDefined);
  ExpectNothingWritten(lines);
}

TEST_F(TaskMakeFourFaults, TranslationIndexesFollowThem) {
  AddFaultySettings();
  AddFaultyInput();
  AddFaultyResp();
  AddFaultyPoints();
  CResp f(Pod());
  f.m_nID = 1;
  ASSERT_TRUE(f.GetObject());
  f.m_uIndex = 9;
  f.PutObject();
  Names lines = kFourFaults;
  lines[2] = "LError: (Check Resps) : Lower bound > Upper bound for Response (f - index=9)\n";
  lines.push_back(
      "LError: (Make Task) : Translation index of Response (f - index=9) is not from 1 to 1\n");
  lines.push_back(kNotDefined);
  ExpectNothingWritten(lines);
}

TEST_F(TaskMakeFourFaults, FaultOfTheSettingsAloneIsEnough) {
  Add(Input("x"));
  Add(Resp("f"));
  ExpectNothingWritten({"LError: (Design Control): Objective not defined.\n", kNotDefined});
}

TEST_F(TaskMakeFourFaults, FaultOfAnInputAloneIsEnough) {
  AddFaultyInput();
  Add(Objective("f"));
  ExpectNothingWritten({kFourFaults[1], kNotDefined});
}

TEST_F(TaskMakeFourFaults, FaultOfAResponseAloneIsEnough) {
  Add(Input("x"));
  AddFaultyResp();
  CDesignControl control = Control();
  control.m_nTaskType = 4;
  control.PutObject();
  ExpectNothingWritten({kFourFaults[2], kNotDefined});
}

TEST_F(TaskMakeFourFaults, FaultOfThePointsAloneIsEnough) {
  AddFaultySettings();
  Add(Input("x"));
  Add(Objective("f"));
  AddFaultyPoints();
  ExpectNothingWritten(
      {kFourFaults[3], kFourFaults[4], kFourFaults[5], kFourFaults[6], kNotDefined});
}

TEST_F(TaskMakeFaults, CombinatorialVariablesAndMultipleStartsExcludeEachOther) {
  Add(Input("x"));
  CInput choice = Input("choice", 6);
  choice.m_nAuxID = AddSet("set", {0.0, 1.0});
  Add(choice);
  Add(Objective("f"));
  SetPoints({{1, 1, 0, {0.0, 1.0}, {0.0}}});
  CDesignControl control = Control();
  control.m_DGO.m_nMultiStart = 1;
  control.PutObject();
  ExpectNothingWritten({"LError: (Create Task): Cannot create a task that contains combinatorial\n",
                        "LPrint:       design variables and performs optimization starting from\n",
                        "LPrint:       multiple initial starting points.\n"});
  // Other types of task don't look at the setting, and no ID was taken.
  control = Control();
  control.m_nTaskType = 3;
  control.PutObject();
  EXPECT_EQ(MakeWell().m_nID, 1);
}

// ---- Translation indexes ----

class TaskMakeIndexes : public TaskMakeFaults {
 protected:
  void SetIndex(CInput& input, unsigned long index) {
    input.m_uIndex = index;
    input.PutObject();
  }
  void SetIndex(CResp& resp, unsigned long index) {
    resp.m_uIndex = index;
    resp.PutObject();
  }
  void SetUp() override {
    x = Input("x");
    y = Input("y");
    f = Objective("f");
    g = Resp("g");
    for (vbPersistent* definition : std::vector<vbPersistent*>{&x, &y, &f, &g}) {
      definition->Connect(Pod());
    }
    x.m_uSize = 3;
    Add(x);
    Add(y);
    Add(f);
    Add(g);
  }

  CInput x{Pod()};
  CInput y{Pod()};
  CResp f{Pod()};
  CResp g{Pod()};
};

TEST_F(TaskMakeIndexes, OfZeroAreReported) {
  SetIndex(x, 0);
  SetIndex(g, 0);
  ExpectNothingWritten(
      {"LError: (Make Task) : Translation index of Input (x - index=0) is not from 1 to 4\n",
       "LError: (Make Task) : Translation index of Response (g - index=0) is not from 1 to 2\n",
       kNotDefined});
}

TEST_F(TaskMakeIndexes, BehindTheLastScalarAreReported) {
  SetIndex(y, 5);
  SetIndex(f, 3);
  ExpectNothingWritten(
      {"LError: (Make Task) : Translation index of Input (y - index=5) is not from 1 to 4\n",
       "LError: (Make Task) : Translation index of Response (f - index=3) is not from 1 to 2\n",
       kNotDefined});
}

TEST_F(TaskMakeIndexes, OfAnySizeAreReported) {
  SetIndex(y, 0x7FFFFFFF);
  SetIndex(f, 0xFFFFFFFF);
  ExpectNothingWritten(
      {"LError: (Make Task) : Translation index of Input (y - index=2147483647) is not from 1 to "
       "4\n",
       "LError: (Make Task) : Translation index of Response (f - index=-1) is not from 1 to 2\n",
       kNotDefined});
}

TEST_F(TaskMakeIndexes, ThatTwoDefinitionsShareAreReported) {
  SetIndex(y, 1);
  SetIndex(g, 1);
  const auto before = Objects();
  Make();
  const Names lines = PrintedLines();
  // Which of the two is named depends on their order in the file.
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_TRUE(
      lines[1] ==
          "LError: (Make Task) : Translation index of Input (y - index=1) is used twice\n" ||
      lines[1] == "LError: (Make Task) : Translation index of Input (x - index=1) is used twice\n")
      << lines[1];
  EXPECT_TRUE(
      lines[2] ==
          "LError: (Make Task) : Translation index of Response (g - index=1) is used twice\n" ||
      lines[2] ==
          "LError: (Make Task) : Translation index of Response (f - index=1) is used twice\n")
      << lines[2];
  EXPECT_EQ(lines[3], kNotDefined);
  EXPECT_EQ(Objects(), before);
}

TEST_F(TaskMakeIndexes, AtTheLastScalarAreGood) {
  SetIndex(x, 2);
  SetIndex(y, 1);
  SetIndex(f, 2);
  SetIndex(g, 1);
  MakeWell();
  EXPECT_EQ(Stored<CDVar>(1).m_vstrIndName, (Names{"y", "x_1", "x_2", "x_3"}));
  EXPECT_EQ(Stored<CDResp>(1).m_vstrIndName, (Names{"g", "f"}));
}

TEST_F(TaskMakeIndexes, OfAnArrayThatFitsInNoFileAreReported) {
  x.m_uSize = 0xFFFFFFFF;
  x.PutObject();
  ExpectNothingWritten(
      {"LError: (Make Task) : The study has more Input elements than a task can hold\n",
       kNotDefined});
}

}  // namespace
