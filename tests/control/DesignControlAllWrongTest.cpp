#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "tests/support/Bytes.h"
#include "tests/support/Log.h"
#include "tests/support/Study.h"

// Studies in which every rule of a task is broken, and all that the check reports of them.

namespace {

using Lines = std::vector<LogEntry>;

LogEntry Error(const std::string& text) {
  return {"LError", text, "", 0};
}
LogEntry Print(const std::string& text) {
  return {"LPrint", text, "", 0};
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class DesignControlAllWrong : public testing::Test {
 protected:
  DesignControlAllWrong() : control(study.Pod()) {
    const std::string file = study.folder / "files\xC3\xA4";
    WriteBytes(file, "x");
    std::filesystem::permissions(file, std::filesystem::perms::none);
    control.m_strProgram = "none\xC3\xA4";
    control.m_strVarFile = control.m_strRespFile = file;
  }

  void ExpectFailed(int indResp, const Lines& log) {
    control.PutObject();
    ClearLog();
    EXPECT_FALSE(CDesignControl::CheckDesignControl(study.Pod(), false, false, 3, 2, 1, indResp, 0,
                                                    0, 1, 9, 1, 0));
    EXPECT_EQ(Log(), log);
  }

  /// What is wrong with the program and its files.
  Lines Program() const {
    const std::string& file = control.m_strVarFile;
    const LogEntry advice = Print("     invalid characters.  Use ASCII characters only.\n\n");
    const LogEntry variables =
        Error("(Design Control): Analysis variable transfer file (" + file + ")");
    const LogEntry responses =
        Error("(Design Control): Analysis response transfer file (" + file + ")");
    return {
        Error("(Design Control): Analysis program filename (none\xC3\xA4) contains\n"),
        advice,
        Error("(Design Control): Analysis program input filename (" + file + ")contains\n"),
        advice,
        Error("(Design Control): Analysis program output (" + file + ") filename contains\n"),
        advice,
        Error("(Design Control): Analysis program (none\xC3\xA4) not found.\n"),
        variables,
        Print("     does not have read permission.\n\n"),
        variables,
        Print("     does not have write permission.\n\n"),
        responses,
        Print("      does not have read permission.\n\n"),
        responses,
        Print("      does not have write permission.\n\n"),
    };
  }

  Study study;
  CDesignControl control;
};

const Lines noObjective{Error("(Design Control): Objective not defined.\n")};

const Lines saveFlag{
    Error("(Design Control): The save simulation points flag (2)"),
    Print("     should be either FALSE=0 or TRUE=1.\n\n"),
};

// ---- Gradient task ----

void BreakAll(CDGOControl& block) {
  for (vbINT32 CDGOControl::*field :
       {&CDGOControl::m_nSkip, &CDGOControl::m_nIPRINT, &CDGOControl::m_nMINMAX,
        &CDGOControl::m_nMETHOD, &CDGOControl::m_nUncMETHOD, &CDGOControl::m_nITMAX,
        &CDGOControl::m_nJTMAX, &CDGOControl::m_nITRMOP, &CDGOControl::m_nITRMST,
        &CDGOControl::m_nNGMAX, &CDGOControl::m_nIGMAX, &CDGOControl::m_nJPRINT,
        &CDGOControl::m_nIPRNT1, &CDGOControl::m_nIPRNT2, &CDGOControl::m_nStoreFD}) {
    block.*field = -1;
  }
  block.m_nISCAL = block.m_nIGRAD = -2;
  for (vbFLOAT64 CDGOControl::*field :
       {&CDGOControl::m_fCTMIN, &CDGOControl::m_fDELOBJ, &CDGOControl::m_fDABOBJ,
        &CDGOControl::m_fSoftRel, &CDGOControl::m_fSoftAbs, &CDGOControl::m_fPENALT,
        &CDGOControl::m_fPMULT, &CDGOControl::m_fPENLTD, &CDGOControl::m_fPMULTD,
        &CDGOControl::m_fDOBJ1, &CDGOControl::m_fDOBJ2, &CDGOControl::m_fDX1, &CDGOControl::m_fDX2,
        &CDGOControl::m_fFDCH, &CDGOControl::m_fFDCHM, &CDGOControl::m_fRMVLMZ,
        &CDGOControl::m_fDABSTR, &CDGOControl::m_fDELSTR}) {
    block.*field = -1.5;
  }
  block.m_fCT = 0.5;
  block.m_nRandomMethod = 3;
  block.m_nSavePoints = 2;
}

const std::string notBelow = "     should be larger than or equal to 0.\n\n";

const Lines wrongGradient{
    Error("(Design Control): The gradient iteration skip count (-1) should be larger"),
    Print("      than or equal to 0 (no skip) or less than or equal to 4 (agressive skip).\n\n"),
    Error("(Design Control): The ZEF print level (IPRINT=-1) should be larger than or equal"),
    Print("     to 0 (no output) or less than or equal to 7 (debug output).\n\n"),
    Error("(Design Control): The ZEF minimize flag (MINMAX=-1) should be"),
    Print("      either FALSE=0 or TRUE=1.\n\n"),
    Error("(Design Control): The ZEF constraint tolerance (CT=0.5) should be"),
    Print("     less than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF violated constraint tolerance (CTMIN=-1.5) should be"),
    Print("      larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF relative hard convergence criterion (DELOBJ=-1.5)"),
    Print("     should be larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF absolute hard convergence criterion (DABOBJ=-1.5) should"),
    Print("      be larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF relative soft convergence criterion (-1.5) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF absolute soft convergence criterion (-1.5) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF constrained method (METHOD=-1) should be"),
    Print("     equal to 0 (MMFD), 2 (SLP), 3 (SQP) or 4 (MEGZEF).\n\n"),
    Error("(Design Control): The ZEF unconstrained method (METHOD=-1) should be"),
    Print("     equal to 0 (BFGS), 2 (FR) or 4(MEGZEF).\n\n"),
    Error("(Design Control): The ZEF design variable scale value (ISCAL=-2) should be"),
    Print("     larger than or equal to -1.\n\n"),
    Error("(Design Control): The ZEF maximum number of iterations (ITMAX=-1) should be "),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF maximum number of sub-iterations (JTMAX=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF number of iterations to convergence (ITRMOP=-1)"),
    Print(notBelow),
    Error("(Design Control): The ZEF number of sub-iterations to convergence (ITRMST=-1)"),
    Print(notBelow),
    Error("(Design Control): The MEGZEF continuous penalty parameter (PENALT=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF continuous penalty multiplier (PMULT=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF discrete penalty parameter (PENLTD=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF discrete penalty multiplier (PMULTD=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF DOBJ1 parameter (DOBJ1=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF DOBJ2 parameter (DOBJ2=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF DX1 parameter (DX1=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF DX2 parameter (DX2=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF relative finite difference step size (FDCH=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF absolute finite difference step size (FDCHM=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF RMVLMZ parameter (RMVLMZ=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF DABSTR parameter (DABSTR=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF DELSTR parameter (DELSTR=-1.5)"),
    Print(notBelow),
    Error("(Design Control): The ZEF gradient flag (IGRAD=-2) should be"),
    Print("     larger than or equal to -1 and less than or equal to 1.\n\n"),
    Error("(Design Control): The ZEF NGMAX parameter (NGMAX=-1)"),
    Print(notBelow),
    Error("(Design Control): The ZEF IGMAX parameter (IGMAX=-1)"),
    Print(notBelow),
    Error("(Design Control): The ZEF JPRINT parameter (JPRINT=-1)"),
    Print(notBelow),
    Error("(Design Control): The ZEF IPRNT1 parameter (IPRNT1=-1) should be"),
    Print("     larger than or equal to 0 and less than or equal to 1.\n\n"),
    Error("(Design Control): The ZEF IPRNT1 parameter (IPRNT2=-1) should be"),
    Print("     larger than or equal to 0 and less than or equal to 2.\n\n"),
    Error("(Design Control): The ZEF save finite difference analyses flag (-1)"),
    Print("     should be either FALSE=0 or TRUE=1.\n\n"),
    Error("(Design Control): The random analysis method used with gradient \n"),
    Print("     based optimization should be either Monte Carlo Sampling, \n"),
    Print("     Latin Hypercube Sampling, or the Mean value approximation method.\n\n"),
};

TEST_F(DesignControlAllWrong, InAGradientTask) {
  BreakAll(control.m_DGO);
  ExpectFailed(1, noObjective + Program() + wrongGradient + saveFlag);
}

TEST_F(DesignControlAllWrong, InATaskThatBecomesAGradientTask) {
  control.m_nTaskType = 1;
  BreakAll(control.m_DGO);
  const Lines switched{
      {"LWarn", "(Design Control): Independent responses not defined.", "", 0},
      Print("     Approximate Optimization (RSA) cannot generate approximations\n"),
      Print("     without independent responses.\n"),
      Print("     Switching to Direct Optimization (DGO).\n\n"),
  };
  ExpectFailed(0, switched + noObjective + wrongGradient + saveFlag);
}

// ---- Other tasks ----

/// The method's fault names a kind of task.
Lines WrongMethod(const std::string& first, const std::string& second) {
  return {Error(first), Print(second),
          Print("     Approximate Monte Carlo Sampling, Latin Hypercube Sampling, Approximate\n"),
          Print("     Latin Hypercube Sampling, or the Mean value approximation method.\n\n")};
}

void BreakAll(CRSAControl& block) {
  block.m_nOrder = 7;
  block.m_nHasMinPoints = 1;
  block.m_nMinPoints = 0;
  block.m_nIPRINT = 8;
  block.m_nMINMAX = 2;
  block.m_fCT = 0.5;
  block.m_nMETHOD = block.m_nUncMETHOD = 1;
  block.m_nISCAL = -2;
  block.m_nITMAX = block.m_nJTMAX = block.m_nITRMOP = block.m_nITRMST = -1;
  block.m_nConvIters = -1;
  for (vbFLOAT64 CRSAControl::*field :
       {&CRSAControl::m_fCTMIN, &CRSAControl::m_fDABOBJ, &CRSAControl::m_fDELOBJ,
        &CRSAControl::m_fPENALT, &CRSAControl::m_fPMULT, &CRSAControl::m_fPENLTD,
        &CRSAControl::m_fPMULTD, &CRSAControl::m_fHardRel, &CRSAControl::m_fHardAbs,
        &CRSAControl::m_fSoftRelApprox, &CRSAControl::m_fSoftAbsApprox,
        &CRSAControl::m_fMoveRelLinear, &CRSAControl::m_fMoveRelMixed, &CRSAControl::m_fMoveRelQuad,
        &CRSAControl::m_fMoveAbsLinear, &CRSAControl::m_fMoveAbsMixed, &CRSAControl::m_fMoveAbsQuad,
        &CRSAControl::m_fPEnter, &CRSAControl::m_fPRemove}) {
    block.*field = -2.5;
  }
  block.m_nRandomMethod = 5;
  block.m_nSavePoints = 2;
}

const std::string above = "     larger than 0.\n\n";

const Lines wrongSurface{
    Error("(Design Control): Invalid DOE model.\n"),
    Error("(Design Control): Minimum number of design points (0) to evaluate"),
    Print("     must be greater than 0.\n\n"),
    Error("(Design Control): The ZEF print level (IPRINT=8) should be larger than or equal"),
    Print("     to 0 (no output) or less than or equal to 7 (debug output).\n\n"),
    Error("(Design Control): The ZEF minimize flag (MINMAX=2) should be"),
    Print("      either FALSE=0 or TRUE=1.\n\n"),
    Error("(Design Control): The ZEF constraint tolerance (CT=0.5) should be"),
    Print("     less than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF violated constraint tolerance (CTMIN=-2.5) should be"),
    Print("      larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF absolute hard convergence criterion (DABOBJ=-2.5)"),
    Print("     should be larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF relative hard convergence criterion (DELOBJ=-2.5) should"),
    Print("      be larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF relative soft convergence criterion (-2.5) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF absolute soft convergence criterion (-2.5) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF constrained method (METHOD=1) should be"),
    Print("     equal to 0 (MMFD), 2 (SLP), 3 (SQP) or 4 (MEGZEF).\n\n"),
    Error("(Design Control): The ZEF unconstrained method (METHOD=1) should be"),
    Print("     equal to 0 (BFGS), 2 (FR) or 4(MEGZEF).\n\n"),
    Error("(Design Control): The ZEF design variable scale value (ISCAL=-2) should be"),
    Print("     larger than or equal to -1.\n\n"),
    Error("(Design Control): The ZEF maximum number of iterations (ITMAX=-1) should be "),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF maximum number of sub-iterations (JTMAX=-1) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The ZEF number of iterations to convergence (ITRMOP=-1)"),
    Print(notBelow),
    Error("(Design Control): The ZEF number of sub-iterations to convergence (ITRMST=-1)"),
    Print(notBelow),
    Error("(Design Control): The MEGZEF continuous penalty parameter (PENALT=-2) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF continuous penalty multiplier (PMULT=-2) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF discrete penalty parameter (PENLTD=-2) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The MEGZEF discrete penalty multiplier (PMULTD=-2) should be"),
    Print("     larger than or equal to 0.\n\n"),
    Error("(Design Control): The number of approximate iterations to convergence (-1)"),
    Print("     should be larger than 0.\n\n"),
    Error("(Design Control): The relative hard convergence criterion (-2.5) should be"),
    Print(above),
    Error("(Design Control): The absolute hard convergence criterion (-2.5) should be"),
    Print(above),
    Error("(Design Control): The relative soft convergence criterion (-2.5) should be"),
    Print(above),
    Error("(Design Control): The absolute soft convergence criterion (-2.5) should be"),
    Print(above),
    Error("(Design Control): The relative linear move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The relative mixed move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The relative quadratic move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The absolute linear move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The absolute mixed move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The absolute quadratic move limit (-2.5) should be"),
    Print(above),
    Error("(Design Control): The p-value of terms to enter the model (-2.5) should be"),
    Print(above),
    Error("(Design Control): The p-value of terms to be removed from the model (-2.5) should be"),
    Print(above),
};

TEST_F(DesignControlAllWrong, InASurfaceTask) {
  control.m_nTaskType = 1;
  BreakAll(control.m_RSA);
  ExpectFailed(
      1, noObjective + Program() + wrongSurface +
             WrongMethod(
                 "(Design Control): The random analysis method used with response surface\n",
                 "     approximate based optimization should be either Monte Carlo Sampling, \n") +
             saveFlag);
}

/// A factorial design of three variables and option 5 has no point, of which one is to be kept.
TEST_F(DesignControlAllWrong, InADesign) {
  control.m_nTaskType = 2;
  CDOEControl& block = control.m_DOE;
  block.m_nMethod = 0;
  block.m_vnOptions[0] = 5;
  block.m_nTask = 2;
  block.m_nModel = 3;
  block.m_nDOptimal = block.m_nRetained = block.m_nFilter = 1;
  block.m_nRandomMethod = 5;
  block.m_nSavePoints = 2;
  const Lines wrongDesign{
      Error("(Design Control): Number of design points (0) either generated or supplied"),
      Print("     by the design is less than the specified number of retained design \n"),
      Print("     points (1) in D-optimal design.\n\n"),
      Error("(Design Control): The number of D-optimal design points (1) must be greater"),
      Print("     than the number of independent design variables + 1 (4).\n\n"),
      Error("(Design Control): The number of locked D-optimal design points (9) is greater"),
      Print("     than the required number of D-optimal design points (1).\n\n"),
      {"LWarn",
       "(Design Control): Design variable filtering can only be applied to random and user", "", 0},
      Print("     provided designs. Filtering will not be performed.\n\n"),
      Error("(Design Control): Number of independent responses (0) must be greater than 0 to"),
      Print("     generate approximations.\n\n"),
      Error("(Design Control): The approximations cannot be created with the current design"),
      Print("     and desired model. The number of terms in the approximations (10) is"),
      Print("     greater than the number of design points + 1 (2).\n\n"),
      Error("(Design Control): Factorial type design cannot generate quadratic"),
      Error("(Design Control): Wrong option specified for Factorial DOE: 5\n"),
      Print("       You may specify values from 0 to (# of independent variables - 1)\n"),
      Print("       # of independent variables = 3.\n"),
      Error("(Design Control): Independent responses not defined."),
      Print("     DOE cannot generate approximations without independent responses.\n\n"),
  };
  const Lines combinatorial{
      Error("(Design Control): Combinatroial design variables can not be used with DOE.\n")};
  ExpectFailed(0,
               combinatorial + Program() + wrongDesign +
                   WrongMethod("(Design Control): The random analysis method used with design of\n",
                               "     experiments should be either Monte Carlo Sampling, \n") +
                   saveFlag);
}

TEST_F(DesignControlAllWrong, InANonGradientTask) {
  control.m_nTaskType = 3;
  CNGOControl& block = control.m_NGO;
  block.m_fInertia = block.m_fTrust1 = block.m_fTrust2 = block.m_fCTMIN = -0.5;
  block.m_nStart = 11;
  block.m_nMaxIters = -1;
  block.m_nMinIters = 0;
  block.m_nFixedSeed = 2;
  block.m_nConvIters = 1;
  block.m_fHardAbs = block.m_fHardRel = block.m_fSoftAbs = 0.0;
  block.m_nRandomMethod = -1;
  block.m_nSavePoints = 2;
  const std::string notNegative = "     larger than or equal to zero.\n";
  const std::string positive = "     larger than zero.\n\n";
  const Lines wrongSwarm{
      Error("(Design Control): The inertia weight parameter (-0.5) must be"),
      Print(notNegative),
      Error("(Design Control): The first trust parameter (-0.5) must be"),
      Print(notNegative),
      Error("(Design Control): The second trust paramter (-0.5) must be"),
      Print(notNegative),
      Error("(Design Control): Population size (1) must be larger than 1.\n"),
      Print("     Current starting strategy is user defined.\n"),
      Error("(Design Control): The maximum number of iterations (-1) must be larger than 0.\n"),
      Error("(Design Control): The minimum number of iterations (0) must be larger than 0.\n"),
      Error("(Design Control): The minimum number of iterations (0) must be less than"),
      Print("     or equal to the maximum maximum number of iterations (-1).\n"),
      Error("(Design Control): The random number seed flag (2) must be set to"),
      Print("     either FALSE=0 or TRUE=1.\n\n"),
      Error("(Design Control): The number of iterations to convergence (1"),
      Print("     must be larger than 1.\n\n"),
      Error("(Design Control): The violated constraint tolerance (-0.5) must be"),
      Print("     larger than or equal to zero.\n\n"),
      Error("(Design Control): The absolute hard convergence criterion (0) must be"),
      Print(positive),
      Error("(Design Control): The relative hard convergence criterion (0) must be"),
      Print(positive),
      Error("(Design Control): The absolute soft convergence criterion (0) must be"),
      Print(positive),
      Error("(Design Control): The relative soft convergence criterion (0) must be"),
      Print(positive),
  };
  ExpectFailed(
      1, noObjective + Program() + wrongSwarm +
             WrongMethod("(Design Control): The random analysis method used with non-gradient\n",
                         "     based optimization should be either Monte Carlo Sampling, \n") +
             saveFlag);
}

TEST_F(DesignControlAllWrong, InAnAnalysis) {
  control.m_nTaskType = 4;
  control.m_ANL.m_nRandomMethod = 2;
  control.m_ANL.m_nRandomPoints = 0;
  control.m_ANL.m_nSavePoints = 2;
  const Lines wrongAnalysis{
      Error("(Design Control): The random analysis method should be either\n"),
      Print("     Monte Carlo Sampling or Latin Hypercube Sampling.\n\n"),
      Error("(Design Control): The number of simulation points for a random analysis\n"),
      Print("     should be greater than 0.\n\n"),
  };
  ExpectFailed(1, Program() + wrongAnalysis + saveFlag);
}

TEST_F(DesignControlAllWrong, InATaskOfNoKnownKind) {
  control.m_nTaskType = 6;
  ExpectFailed(1, noObjective + Lines{Error("(Design Control):  Invalid task type (6).\n")});
}

}  // namespace
