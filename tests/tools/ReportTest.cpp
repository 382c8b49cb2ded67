#include "tests/support/Printed.h"
#include "tests/tools/ToolStudy.h"

// The reports are the library's own, whose tests tell what they look like.

class ReportTest : public ToolStudy {
 protected:
  ReportTest() { Fill(); }

  using Dump = std::function<void(POD*, std::FILE*)>;

  /// That `report what options... study` prints what `dump` does, and that that is something.
  void ExpectReport(const std::string& what, const std::vector<std::string>& options,
                    const Dump& dump) const {
    std::vector<std::string> arguments{"report", what};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back("study");
    std::string expected;
    Change([&](POD* pod) { expected = Printed([&](std::FILE* out) { dump(pod, out); }); });
    EXPECT_NE(expected, "") << what;
    EXPECT_EQ(Output(arguments), expected) << what;
  }

  template <class Class>
  void ExpectReportOfStudy(const std::string& what) const {
    ExpectReport(what, {}, [](POD* pod, std::FILE* out) { Class::Dump(pod, out); });
  }
  template <class Class>
  void ExpectReportOfTask(const std::string& what) const {
    ExpectReport(what, {"--task", "1"}, [](POD* pod, std::FILE* out) { Class::Dump(pod, out, 1); });
  }
};

TEST_F(ReportTest, OfTheStudy) {
  Change([](POD* pod) {
    CAuxiliary set(pod);
    set.m_nID = 9;
    set.m_nAuxType = 4;
    set.m_vfValues = {1.0};
    set.PutObject();
  });
  ExpectReportOfStudy<CInput>("inputs");
  ExpectReportOfStudy<CResp>("responses");
  ExpectReportOfStudy<CAuxiliary>("auxiliaries");
  ExpectReportOfStudy<CDesignControl>("control");
  ExpectReportOfStudy<CGPoint>("points");
  ExpectReportOfStudy<CDBCtrl>("counters");
}

TEST_F(ReportTest, OfATask) {
  ExpectReportOfTask<CTask>("task");
  ExpectReportOfTask<CDVar>("dvar");
  ExpectReportOfTask<CDResp>("dresp");
  ExpectReportOfTask<CDCons>("dcons");
  ExpectReportOfTask<CDObj>("dobj");
  ExpectReportOfTask<CDLink>("dlink");
  ExpectReportOfTask<CDEqn>("deqn");
  ExpectReportOfTask<CDSet>("dset");
  ExpectReportOfTask<CMessage>("messages");
  ExpectReportOfTask<CRApproxMod>("final-model");
  ExpectReportOfTask<CRDOE>("design");
}

TEST_F(ReportTest, OfARun) {
  const auto result = [](bool subIterations) {
    return [=](POD* pod, std::FILE* out) { CResult::Dump(pod, out, 1, subIterations); };
  };
  ExpectReport("result", {"--task", "1"}, result(false));
  ExpectReport("result", {"--task", "1", "--sub-iterations"}, result(true));
}

TEST_F(ReportTest, OfAPoint) {
  ExpectReport("point", {"--task", "1", "--point", "1"},
               [](POD* pod, std::FILE* out) { CDPoint::Dump(pod, out, 1, 1); });
}

TEST_F(ReportTest, OfAnIteration) {
  Change([](POD* pod) {
    CIter iter(pod);
    iter.m_nTaskID = 1;
    iter.m_nIter = 4;
    iter.m_nSubIter = 2;
    iter.m_nBestPoint = 0;
    iter.PutObject();
  });
  const auto iteration = [](bool all, int iter, int sub, bool best) {
    return [=](POD* pod, std::FILE* out) { CIter::Dump(pod, out, 1, all, iter, sub, best); };
  };
  ExpectReport("iteration", {"--task", "1", "--iter", "0"}, iteration(false, 0, 0, false));
  ExpectReport("iteration", {"--task", "1", "--iter", "0", "--all-constraints"},
               iteration(true, 0, 0, false));
  ExpectReport("iteration", {"--task", "1", "--iter", "4", "--sub", "2", "--best"},
               iteration(false, 4, 2, true));
}

TEST_F(ReportTest, OfAModel) {
  ExpectReport("model", {"--task", "1", "--resp", "0"},
               [](POD* pod, std::FILE* out) { CApproxModels::Dump(pod, out, 1, 0); });
}

TEST_F(ReportTest, OfResiduals) {
  Change([](POD* pod) {
    CRDOE design(pod);
    design.m_nTaskID = 1;
    design.m_Points = {5};
    design.PutObject();
  });
  const auto residuals = [](bool numbers) {
    return [=](POD* pod, std::FILE* out) { CResidual::Dump(pod, out, 1, 0, numbers); };
  };
  ExpectReport("residuals", {"--task", "1", "--resp", "0"}, residuals(false));
  ExpectReport("residuals", {"--task", "1", "--resp", "0", "--design-numbers"}, residuals(true));
}

TEST_F(ReportTest, TellsWhatIsNotThere) {
  EXPECT_EQ(Message({"report", "task", "--task", "2", "study"}, 2),
            "kestdb: study.ksb has no task 2\n");
  EXPECT_EQ(Message({"report", "point", "--task", "1", "--point", "2", "study"}, 2),
            "kestdb: the study has no point 2 of task 1\n");
  EXPECT_EQ(Message({"report", "iteration", "--task", "1", "--iter", "1", "study"}, 2),
            "kestdb: the study has no iteration 1.0 of task 1\n");
  EXPECT_EQ(Message({"report", "model", "--task", "1", "--resp", "1", "study"}, 2),
            "kestdb: the study has no model of response 1 of task 1\n");
  EXPECT_EQ(Message({"report", "residuals", "--task", "1", "--resp", "1", "study"}, 2),
            "kestdb: the study has no residuals of response 1 of task 1\n");
  Change([](POD* pod) {
    CRApproxMod::RemoveRApproxMod(pod, 1);
    CRDOE design(pod);
    design.m_nTaskID = 1;
    design.RemoveObject();
  });
  EXPECT_EQ(Message({"report", "final-model", "--task", "1", "study"}, 2),
            "kestdb: the study has no final model of task 1\n");
  EXPECT_EQ(Message({"report", "design", "--task", "1", "study"}, 2),
            "kestdb: the study has no design of task 1\n");
}

TEST_F(ReportTest, WantsTheOptionsOfTheReportAndNoOthers) {
  EXPECT_EQ(Message({"report", "task", "study"}, 2), "kestdb: report task needs --task\n");
  EXPECT_EQ(Message({"report", "point", "--task", "1", "study"}, 2),
            "kestdb: report point needs --point\n");
  EXPECT_EQ(Message({"report", "inputs", "--task", "1", "study"}, 2),
            "kestdb: report inputs has no use for --task\n");
  EXPECT_EQ(Message({"report", "task", "--task", "1", "--best", "study"}, 2),
            "kestdb: report task has no use for --best\n");
  EXPECT_EQ(Kestdb({"report", "nothing", "study"}).status, 2);
  EXPECT_EQ(Message({"report", "inputs", "studi"}, 4),
            "kestdb: studi.ksb: No such file or directory\n");
}

TEST_F(ReportTest, PrintsNothingOfADamagedObject) {
  WriteAt(DataPath(), AddressOf<CResp>() + 20, "?");
  EXPECT_EQ(Message({"report", "responses", "study"}, 1), "kestdb: Checksum error\n");
}
