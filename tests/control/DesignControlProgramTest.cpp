#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "tests/environment/ChangedVariable.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/TempFolder.h"

namespace {

using Lines = std::vector<LogEntry>;

LogEntry Error(const std::string& text) {
  return {"LError", text, "", 0};
}
LogEntry Print(const std::string& text) {
  return {"LPrint", text, "", 0};
}
std::string NotFound(const std::string& program) {
  return "(Design Control): Analysis program (" + program + ") not found.\n";
}

/// A control whose program is on the path and whose transfer files don't exist yet.
class DesignControlProgram : public testing::Test {
 protected:
  DesignControlProgram() : path("PATH", folder.Path()) {
    MakeProgram("analyze.exe");
    control.m_strVarFile = folder / "dvar.kef";
    control.m_strRespFile = folder / "resp.kef";
  }

  void MakeFile(const std::string& name, int permissions) {
    WriteBytes(folder / name, "x");
    std::filesystem::permissions(folder / name, static_cast<std::filesystem::perms>(permissions));
  }
  void MakeProgram(const std::string& name) { MakeFile(name, 0755); }

  void ExpectPassed() {
    ClearLog();
    EXPECT_TRUE(control.CheckExeParams(false, false, false)) << control.m_strProgram;
    EXPECT_EQ(Log(), Lines()) << control.m_strProgram;
  }
  void ExpectFailed(const Lines& log, bool gradient = false) {
    ClearLog();
    EXPECT_FALSE(control.CheckExeParams(false, gradient, false)) << control.m_strProgram;
    EXPECT_EQ(Log(), log) << control.m_strProgram;
  }
  void ExpectNotFound() { ExpectFailed({Error(NotFound(control.m_strProgram))}); }

  TempFolder folder;
  ChangedVariable path;
  CDesignControl control{static_cast<POD*>(nullptr)};
};

TEST_F(DesignControlProgram, OnThePathWithFilesYetToComeIsFine) {
  ExpectPassed();
}

TEST_F(DesignControlProgram, SkippedIsNotLookedAt) {
  control.m_strProgram = control.m_strVarFile = control.m_strRespFile = "";
  for (const bool warnOnly : {false, true}) {
    for (const bool gradient : {false, true}) {
      ClearLog();
      EXPECT_TRUE(control.CheckExeParams(warnOnly, gradient, true));
      EXPECT_EQ(Log(), Lines());
    }
  }
}

// ---- Search ----

TEST_F(DesignControlProgram, IsSoughtInAllFoldersOfThePath) {
  const ChangedVariable elsewhere("PATH", folder / "none" + ":" + folder.Path() + ":/usr/bin");
  ExpectPassed();
}

TEST_F(DesignControlProgram, OutsideOfThePathIsNotFound) {
  const ChangedVariable elsewhere("PATH", folder / "none");
  ExpectNotFound();
  control.m_strProgram = folder / "analyze.exe";
  ExpectPassed();
}

TEST_F(DesignControlProgram, WithoutAPathIsNotFound) {
  const ChangedVariable none("PATH", std::nullopt);
  ExpectNotFound();
}

TEST_F(DesignControlProgram, ThatCannotBeRunIsNotFound) {
  MakeFile("data.exe", 0644);
  control.m_strProgram = "data.exe";
  ExpectNotFound();
}

TEST_F(DesignControlProgram, NotFoundIsAWarningWhereOnlyWarned) {
  control.m_strProgram = "missing.exe";
  ClearLog();
  EXPECT_TRUE(control.CheckExeParams(true, false, false));
  EXPECT_EQ(Log(), (Lines{{"LWarn", NotFound("missing.exe"), "", 0}}));
}

TEST_F(DesignControlProgram, ScriptNotFoundIsAWarningWhereOnlyWarned) {
  for (const char* program : {"missing.m", "missing.py", "missing.rkl"}) {
    control.m_strProgram = program;
    ClearLog();
    EXPECT_TRUE(control.CheckExeParams(true, false, false));
    EXPECT_EQ(Log(), (Lines{{"LWarn", NotFound(program), "", 0}}));
  }
}

TEST_F(DesignControlProgram, OtherFaultsStayErrorsWhereOnlyWarned) {
  control.m_strProgram = control.m_strVarFile = "";
  ClearLog();
  EXPECT_FALSE(control.CheckExeParams(true, false, false));
  EXPECT_EQ(Log(),
            (Lines{Error("(Design Control): Analysis program not specified.\n"),
                   Error("(Design Control): Analysis variable transfer file not specified.\n")}));
}

TEST_F(DesignControlProgram, IsNotNeededWithApproximations) {
  control.m_strProgram = "missing.exe";
  for (const int approximate : {1, 2, -1}) {
    control.m_nUseApprox = approximate;
    ExpectPassed();
  }
  control.m_nUseApprox = 0;
  ExpectNotFound();
}

TEST_F(DesignControlProgram, AsAScriptIsNeededAlsoWithApproximations) {
  control.m_nUseApprox = 1;
  for (const char* program : {"missing.m", "missing.py", "missing.rkl"}) {
    control.m_strProgram = program;
    ExpectNotFound();
  }
}

// ---- Kinds ----

TEST_F(DesignControlProgram, AsAScriptIsAFileNotSoughtOnThePath) {
  for (const char* name :
       {"model.m", "model.M", "model.py", "model.PY", "model.rkl", "model.RKL"}) {
    MakeProgram(name);
    control.m_strProgram = name;
    ExpectNotFound();
    std::filesystem::permissions(folder / name, std::filesystem::perms{0644});
    control.m_strProgram = folder / name;
    ExpectPassed();
  }
}

TEST_F(DesignControlProgram, OfAMixedEndingIsAProgramLikeAnyOther) {
  for (const char* name : {"model.Py", "model.pY", "model.Rkl", "model.rKL", "model.Pl", "model.pL",
                           "model.py.exe", "modelm", "py"}) {
    control.m_strProgram = name;
    ExpectNotFound();
    MakeProgram(name);
    ExpectPassed();
  }
}

TEST_F(DesignControlProgram, ForMatlabHasItsOwnProtocolForFiles) {
  control.m_strVarFile = control.m_strRespFile = "";
  for (const char* name : {"model.m", "model.M"}) {
    MakeFile(name, 0644);
    control.m_strProgram = folder / name;
    ExpectPassed();
    control.m_strProgram = name;
    ExpectNotFound();
  }
  MakeProgram("model.py");
  control.m_strProgram = folder / "model.py";
  ExpectFailed({Error("(Design Control): Analysis variable transfer file not specified.\n"),
                Error("(Design Control): Analysis response transfer file not specified.\n")});
}

const Lines perl{
    Error("(Design Control): Analysis program is a Perl file.\n"),
    Print("       Perl is no longer directly supported by Kestrelon.\n"),
    Print("       If this is an old Quillscript script, please re-export\n"),
    Print("       the script from Quillscript to automatially get a new\n"),
    Print("       Python (.py) script.  If you still want to run the Perl\n"),
    Print("       file, and you have Perl installed on your computer, you\n"),
    Print("       can specify the Perl executable as the analysis program\n"),
    Print("       and the Perl file as the command line argument.\n"),
};

TEST_F(DesignControlProgram, InPerlIsRefused) {
  MakeProgram("model.pl");
  for (const std::string name : {"model.pl", "model.PL", "missing.pl"}) {
    control.m_strProgram = name;
    ExpectFailed(perl);
  }
  control.m_strProgram = folder / "model.pl";
  ExpectFailed(perl);
}

TEST_F(DesignControlProgram, InPerlLeavesTheFilesToBeChecked) {
  control.m_strProgram = "model.pl";
  control.m_strRespFile = "";
  Lines log = perl;
  log.push_back(Error("(Design Control): Analysis response transfer file not specified.\n"));
  ExpectFailed(log);
}

TEST_F(DesignControlProgram, NotSpecifiedIsTold) {
  control.m_strProgram = "";
  ExpectFailed({Error("(Design Control): Analysis program not specified.\n")});
}

// ---- Names ----

TEST_F(DesignControlProgram, InQuotesIsTakenWithoutThem) {
  MakeProgram("my program");
  MakeFile("read only", 0444);
  control.m_strProgram = "\"my program\"";
  control.m_strVarFile = '"' + folder / "read only" + '"';
  ExpectFailed(
      {Error("(Design Control): Analysis variable transfer file (" + folder / "read only" + ")"),
       Print("     does not have write permission.\n\n")});
  control.m_strVarFile = "\"new\"";
  ExpectPassed();
  EXPECT_EQ(control.m_strProgram, "\"my program\"");
  EXPECT_EQ(control.m_strVarFile, "\"new\"");
}

TEST_F(DesignControlProgram, InQuotesIsClassifiedWithoutThem) {
  MakeFile("model.m", 0644);
  control.m_strProgram = '"' + folder / "model.m" + '"';
  control.m_strVarFile = "";
  ExpectPassed();
  control.m_strProgram = "\"model.pl\"";
  control.m_strVarFile = folder / "dvar.kef";
  ExpectFailed(perl);
}

TEST_F(DesignControlProgram, LosesItsFirstAndItsLastQuote) {
  control.m_strProgram = "\"a\"b\"c";
  ExpectFailed({Error(NotFound("a\"bc"))});
  control.m_strProgram = "x\"y\"z";
  ExpectFailed({Error(NotFound("xyz"))});
  control.m_strProgram = "one\"";
  ExpectFailed({Error(NotFound("one\""))});
}

TEST_F(DesignControlProgram, OfNothingButQuotesIsNotSpecified) {
  control.m_strProgram = control.m_strVarFile = control.m_strRespFile = "\"\"";
  ExpectFailed({Error("(Design Control): Analysis program not specified.\n"),
                Error("(Design Control): Analysis variable transfer file not specified.\n"),
                Error("(Design Control): Analysis response transfer file not specified.\n")});
}

TEST_F(DesignControlProgram, HasNamesInASCII) {
  const std::string accented = folder / "\xC3\xA4";
  const LogEntry advice = Print("     invalid characters.  Use ASCII characters only.\n\n");
  MakeProgram("\xC3\xA4");
  control.m_strProgram = accented;
  ExpectFailed(
      {Error("(Design Control): Analysis program filename (" + accented + ") contains\n"), advice});
  control.m_strProgram = "analyze.exe";
  control.m_strVarFile = accented;
  ExpectFailed(
      {Error("(Design Control): Analysis program input filename (" + accented + ")contains\n"),
       advice});
  control.m_strVarFile = folder / "dvar.kef";
  control.m_strRespFile = accented;
  ExpectFailed(
      {Error("(Design Control): Analysis program output (" + accented + ") filename contains\n"),
       advice});
  control.m_strRespFile = folder / "\x7F";
  ExpectPassed();
}

TEST_F(DesignControlProgram, HasNamesInASCIIAlsoForMatlab) {
  MakeFile("model.m", 0644);
  control.m_strProgram = folder / "model.m";
  control.m_strRespFile = "\x80";
  ExpectFailed({Error("(Design Control): Analysis program output (\x80) filename contains\n"),
                Print("     invalid characters.  Use ASCII characters only.\n\n")});
}

// ---- Transfer files ----

const std::string variableFile = "(Design Control): Analysis variable transfer file (";
const std::string responseFile = "(Design Control): Analysis response transfer file (";

TEST_F(DesignControlProgram, HasFilesThatItsOwnerMayReadAndWrite) {
  MakeFile("dvar.kef", 0600);
  MakeFile("resp.kef", 0600);
  ExpectPassed();
}

TEST_F(DesignControlProgram, MayNotReadTheVariables) {
  MakeFile("dvar.kef", 0377);
  ExpectFailed({Error(variableFile + control.m_strVarFile + ")"),
                Print("     does not have read permission.\n\n")});
}

TEST_F(DesignControlProgram, MayNotWriteTheVariables) {
  MakeFile("dvar.kef", 0577);
  ExpectFailed({Error(variableFile + control.m_strVarFile + ")"),
                Print("     does not have write permission.\n\n")});
}

TEST_F(DesignControlProgram, MayNotReadTheResponses) {
  MakeFile("resp.kef", 0377);
  ExpectFailed({Error(responseFile + control.m_strRespFile + ")"),
                Print("      does not have read permission.\n\n")});
}

TEST_F(DesignControlProgram, MayNotWriteTheResponses) {
  MakeFile("resp.kef", 0577);
  ExpectFailed({Error(responseFile + control.m_strRespFile + ")"),
                Print("      does not have write permission.\n\n")});
}

TEST_F(DesignControlProgram, WithEverythingWrong) {
  const std::string variables = folder / "v\xFF";
  const std::string responses = folder / "r\xFF";
  MakeFile("v\xFF", 0);
  MakeFile("r\xFF", 0);
  control.m_strProgram = "p\xFF";
  control.m_strVarFile = variables;
  control.m_strRespFile = responses;
  const LogEntry advice = Print("     invalid characters.  Use ASCII characters only.\n\n");
  ExpectFailed(
      {Error("(Design Control): Analysis program filename (p\xFF) contains\n"), advice,
       Error("(Design Control): Analysis program input filename (" + variables + ")contains\n"),
       advice,
       Error("(Design Control): Analysis program output (" + responses + ") filename contains\n"),
       advice, Error(NotFound("p\xFF")), Error(variableFile + variables + ")"),
       Print("     does not have read permission.\n\n"), Error(variableFile + variables + ")"),
       Print("     does not have write permission.\n\n"), Error(responseFile + responses + ")"),
       Print("      does not have read permission.\n\n"), Error(responseFile + responses + ")"),
       Print("      does not have write permission.\n\n")});
}

// ---- Gradients ----

TEST_F(DesignControlProgram, OfGradientsIsTheOneOfTheGradientBlock) {
  control.m_strProgram = control.m_strVarFile = control.m_strRespFile = "";
  control.m_DGO.m_strGradVarFile = folder / "dvar.kef";
  control.m_DGO.m_strGradRespFile = folder / "resp.kef";
  ClearLog();
  EXPECT_TRUE(control.CheckExeParams(false, true, false));
  EXPECT_EQ(Log(), Lines());
}

TEST_F(DesignControlProgram, OfGradientsWithEverythingMissing) {
  control.m_DGO.m_strGradProgram = "";
  control.m_DGO.m_strGradVarFile = "";
  control.m_DGO.m_strGradRespFile = "";
  ExpectFailed({Error("(Design Control): Gradient program not specified.\n"),
                Error("(Design Control): Gradient variable transfer file not specified.\n"),
                Error("(Design Control): Gradient response transfer file not specified.\n")},
               true);
}

TEST_F(DesignControlProgram, OfGradientsIsNamedInEveryMessage) {
  MakeFile("v\xFF", 0);
  MakeFile("r\xFF", 0);
  control.m_DGO.m_strGradProgram = "\"g\xFF\"";
  control.m_DGO.m_strGradVarFile = folder / "v\xFF";
  control.m_DGO.m_strGradRespFile = folder / "r\xFF";
  ClearLog();
  EXPECT_FALSE(control.CheckExeParams(false, true, false));
  int errors = 0;
  for (const LogEntry& entry : Log()) {
    if (entry.kind != "LError") continue;
    ++errors;
    EXPECT_TRUE(entry.text.starts_with("(Design Control): Gradient ")) << entry.text;
  }
  EXPECT_EQ(errors, 8);
  control.m_DGO.m_strGradProgram = "model.PL";
  ClearLog();
  EXPECT_FALSE(control.CheckExeParams(false, true, false));
  EXPECT_NE(PrintedLog().find("(Design Control): Gradient program is a Perl file.\n"),
            std::string::npos);
}

TEST_F(DesignControlProgram, OfGradientsInOtherTasksIsTheAnalysisProgram) {
  control.m_DGO.m_strGradProgram = "";
  for (int type = 1; type <= 4; ++type) {
    control.m_nTaskType = type;
    control.m_strProgram = "analyze.exe";
    ClearLog();
    EXPECT_TRUE(control.CheckExeParams(false, true, false));
    EXPECT_EQ(Log(), Lines());
    control.m_strProgram = "missing.exe";
    ExpectFailed({Error("(Design Control): Gradient program (missing.exe) not found.\n")}, true);
  }
}

TEST_F(DesignControlProgram, OfGradientsIsNotLookedAtForAnAnalysis) {
  control.m_DGO.m_strGradProgram = "";
  control.m_DGO.m_strGradVarFile = "";
  control.m_DGO.m_strGradRespFile = "";
  ExpectPassed();
}

}  // namespace
