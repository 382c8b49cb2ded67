#include <gtest/gtest.h>

#include "control/DesignControl.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/oldfiles/OldStudy.h"

namespace {

using IntRows = std::vector<Ints>;
using RealRows = std::vector<Reals>;

class OldTask : public OldStudy {};

// ---- The blocks of settings, which are stored alike in both records ----

/// The random analysis that ends a block.
template <class Block>
void ExpectRandom(const Block& block, Counted counted, bool later) {
  if (later) {
    counted.Expect(block.m_nRandomMethod, block.m_nRandomPoints, block.m_nSavePoints);
  } else {
    EXPECT_EQ(block.m_nRandomMethod, 0);
    EXPECT_EQ(block.m_nRandomPoints, 1000);
    EXPECT_EQ(block.m_nSavePoints, 0);
  }
  EXPECT_EQ(block.m_nRandomSeed, 1);
}

void ExpectNumbers(const CDGOControl& block, int base, bool later) {
  Counted counted(base);
  counted.Expect(block.m_nIPRINT, block.m_nMINMAX, block.m_fSoftRel, block.m_fSoftAbs);
  counted.Expect(block.m_nMETHOD, block.m_nUncMETHOD);
  if (later) counted.Expect(block.m_nSkip);
  counted.Expect(block.m_nIGRAD, block.m_nISCAL, block.m_nITMAX, block.m_nITRMOP);
  counted.Expect(block.m_nNGMAX, block.m_nIGMAX, block.m_nJTMAX, block.m_nITRMST);
  counted.Expect(block.m_nJPRINT, block.m_nIPRNT1, block.m_nIPRNT2);
  counted.Expect(block.m_fCT, block.m_fCTMIN, block.m_fDABOBJ, block.m_fDELOBJ, block.m_fDOBJ1);
  counted.Expect(block.m_fDOBJ2, block.m_fDX1, block.m_fDX2, block.m_fFDCH, block.m_fFDCHM);
  counted.Expect(block.m_fRMVLMZ, block.m_fDABSTR, block.m_fDELSTR, block.m_nReserved);
  counted.Expect(block.m_fPENALT, block.m_fPMULT, block.m_fPENLTD, block.m_fPMULTD);
  if (later) counted.Expect(block.m_nGradUserRoutine, block.m_nStoreFD);
  ExpectRandom(block, counted, later);
}

void ExpectBlock(const CDGOControl& block, int base, bool later, const std::string& program) {
  ExpectNumbers(block, base, later);
  EXPECT_EQ(block.m_nMultiStart, 0);
  EXPECT_EQ(block.m_strGradProgram, program);
  EXPECT_EQ(block.m_strGradArgs, later ? "-g" : "");
  EXPECT_EQ(block.m_strGradVarFile, later ? "g.var" : "dvar.kef");
  EXPECT_EQ(block.m_strGradRespFile, later ? "" : "resp.kef");
  if (later) return;
  EXPECT_EQ(block.m_nSkip, 0);
  EXPECT_EQ(block.m_nGradUserRoutine, 0);
  EXPECT_EQ(block.m_nStoreFD, 0);
}

void ExpectBlock(const CRSAControl& block, int base, bool later) {
  Counted counted(base);
  counted.Expect(block.m_nIPRINT, block.m_nMINMAX, block.m_fSoftRel, block.m_fSoftAbs);
  counted.Expect(block.m_nMETHOD, block.m_nUncMETHOD, block.m_nISCAL, block.m_nITMAX);
  counted.Expect(block.m_nITRMOP, block.m_nJTMAX, block.m_nITRMST);
  counted.Expect(block.m_fCT, block.m_fCTMIN, block.m_fDABOBJ, block.m_fDELOBJ);
  counted.Expect(block.m_nReserved, block.m_fPENALT, block.m_fPMULT, block.m_fPENLTD);
  counted.Expect(block.m_fPMULTD, block.m_nInitialDOE, block.m_nSubModel, block.m_nOrder);
  counted.Expect(block.m_nHasMinPoints, block.m_nMinPoints, block.m_nHasMaxPoints);
  counted.Expect(block.m_nMaxPoints, block.m_nConvIters, block.m_fHardRel, block.m_fHardAbs);
  counted.Expect(block.m_fSoftRelApprox, block.m_fSoftAbsApprox);
  counted.Expect(block.m_fMoveRelLinear, block.m_fMoveRelMixed, block.m_fMoveRelQuad);
  counted.Expect(block.m_fMoveAbsLinear, block.m_fMoveAbsMixed, block.m_fMoveAbsQuad);
  EXPECT_EQ(block.m_fPEnter, 0.1);
  EXPECT_EQ(block.m_fPRemove, 0.1);
  ExpectRandom(block, counted, later);
}

/// An early record has twelve designs; the places of the others keep their defaults, 0.
void ExpectBlock(const CDOEControl& block, int base, bool later) {
  Counted counted(base);
  counted.Expect(block.m_nMethod, block.m_nModel, block.m_nTask, block.m_nDOptimal);
  counted.Expect(block.m_nRetained, block.m_nFilter);
  ASSERT_EQ(block.m_vnOptions.size(), 15U);
  ASSERT_EQ(block.m_vnGUIIndices.size(), 15U);
  for (int i = 0; i < 15; ++i) {
    const bool stored = later || i < 12;
    const auto at = static_cast<std::size_t>(i);
    EXPECT_EQ(block.m_vnOptions[at], stored ? base + 50 + i : 0) << i;
    EXPECT_EQ(block.m_vnGUIIndices[at], stored ? base + 70 + i : 0) << i;
  }
  ExpectRandom(block, counted, later);
}

void ExpectBlock(const CNGOControl& block, int base, bool later) {
  Counted counted(base);
  counted.Expect(block.m_nMethod, block.m_nOldPopulation);
  if (later) counted.Expect(block.m_nPopulation);
  counted.Expect(block.m_nMaxIters, block.m_nFixedSeed);
  if (later) counted.Expect(block.m_nSeed);
  counted.Expect(block.m_nConvIters, block.m_nMinIters, block.m_nMinimize, block.m_fCTMIN);
  counted.Expect(block.m_fHardAbs, block.m_fHardRel, block.m_fSoftAbs, block.m_fSoftRel);
  counted.Expect(block.m_fInertia, block.m_fTrust1, block.m_fTrust2, block.m_nCrossType);
  counted.Expect(block.m_fCrossProb, block.m_fMutProb);
  ExpectRandom(block, counted, later);
  if (later) {
    counted.Expect(block.m_nRandomMethod, block.m_nRandomPoints, block.m_nSavePoints);
    counted.Expect(block.m_nStart);
  } else {
    EXPECT_EQ(block.m_nPopulation, 100);
    EXPECT_EQ(block.m_nSeed, 234567890);
    EXPECT_EQ(block.m_nStart, 10);
  }
  EXPECT_EQ(block.m_fSeedFraction, 0.5);
  EXPECT_EQ(block.m_fNSGACrossProb, 1.0);
  EXPECT_EQ(block.m_fNSGAMutProb, 0.1);
  EXPECT_EQ(block.m_nCrossIndex, 10);
  EXPECT_EQ(block.m_nMutIndex, 15);
}

template <class Settings>
void ExpectBlocks(const Settings& settings, int base, bool later, const std::string& program) {
  ExpectBlock(settings.m_DGO, base, later, program);
  ExpectBlock(settings.m_RSA, base + 100, later);
  ExpectBlock(settings.m_DOE, base + 200, later);
  ExpectBlock(settings.m_NGO, base + 300, later);
  ExpectRandom(settings.m_ANL, Counted(base + 400), later);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Old, OldTask, kOldCases, NameOf);

TEST_P(OldTask, Settings) {
  const auto control = Only<CDesignControl>();
  EXPECT_EQ(control.m_nTaskType, 3);
  EXPECT_EQ(control.m_strTitle, "Beam");
  EXPECT_EQ(control.m_strProgram, "solve");
  EXPECT_EQ(control.m_nUserRoutine, later ? 1 : 0);
  EXPECT_EQ(control.m_nUseApprox, 0);
  EXPECT_EQ(control.m_nApproxTask, 0);
  EXPECT_EQ(control.m_strArgs, "-x");
  EXPECT_EQ(control.m_strVarFile, "in.var");
  EXPECT_EQ(control.m_strRespFile, "out.rsp");
  EXPECT_EQ(control.m_nReusePoints, 1);
  EXPECT_EQ(control.m_fPointTol, 0.125);
  EXPECT_EQ(control.m_vnCheckTasks, (Ints{2, 7}));
  ExpectBlocks(control, 1000, later, "grad");
}

TEST_P(OldTask, SettingsOfRemoteRuns) {
  const auto control = Only<CDesignControl>();
  EXPECT_EQ(control.m_nRemote, later ? 1 : 0);
  EXPECT_EQ(control.m_nUseSSH, later ? 0 : 1);
  EXPECT_EQ(control.m_strSSHConnect, later ? "r1" : "");
  EXPECT_EQ(control.m_strSSHCopyTo, later ? "r2" : "");
  EXPECT_EQ(control.m_strSSHCopyFrom, later ? "r3" : "");
  EXPECT_EQ(control.m_strConnect, later ? "r4" : "");
  EXPECT_EQ(control.m_strCopyTo, later ? "r5" : "");
  EXPECT_EQ(control.m_strCopyFrom, later ? "r6" : "");
  EXPECT_EQ(control.m_strUser, later ? "r7" : "");
  EXPECT_EQ(control.m_strHost, later ? "r8" : "");
  EXPECT_EQ(control.m_strRemoteDir, later ? "r9" : "");
  EXPECT_EQ(control.m_nTimeout, later ? 60 : -1);
}

TEST_P(OldTask, Task) {
  const auto task = Numbered(&CTask::m_nID, 1);
  EXPECT_EQ(task.m_nType, 3);
  EXPECT_EQ(task.m_strTitle, "First");
  EXPECT_EQ(task.m_strProgram, "solve");
  EXPECT_EQ(task.m_nUserRoutine, later ? 1 : 0);
  EXPECT_EQ(task.m_nUseApprox, 0);
  EXPECT_EQ(task.m_nApproxTask, 0);
  EXPECT_EQ(task.m_strArgs, "");
  EXPECT_EQ(task.m_strVarFile, "in.var");
  EXPECT_EQ(task.m_strRespFile, "out.rsp");
  EXPECT_EQ(task.m_vnAnalyzeFlags, (Ints{1, 0}));
  EXPECT_EQ(task.m_vnPointLocked, (Ints{0, 1}));
  EXPECT_EQ(task.m_strCreated, "Mon Jan  2 2006");
  EXPECT_EQ(task.m_nParent, 0);
  EXPECT_EQ(task.m_nRestartOf, 0);
  EXPECT_EQ(task.m_vnChildren, (Ints{8, 9}));
  EXPECT_EQ(task.m_vnRestarts, Ints{});
  ExpectBlocks(task, 2000, later, "grad2");
}

TEST_P(OldTask, CountsOfTheTask) {
  const auto task = Numbered(&CTask::m_nID, 1);
  Counted counted(2500);
  counted.Expect(task.m_uNumIndDV, task.m_uNumLinkDV, task.m_uNumSynDV, task.m_uNumConstDV);
  counted.Expect(task.m_uNumIndResp, task.m_uNumLinkResp, task.m_uNumSynResp);
  counted.Expect(task.m_uNumCons, task.m_uNumObj, task.m_uNumLinks, task.m_uNumEqns);
  counted.Expect(task.m_uNumSets, task.m_uNumPoints);
  if (later) {
    counted.Expect(task.m_uNumRandDV, task.m_uNumRandResp);
  } else {
    EXPECT_EQ(task.m_uNumRandDV, 0U);
    EXPECT_EQ(task.m_uNumRandResp, 0U);
  }
}

TEST_P(OldTask, RemoteRunsOfTheTask) {
  const auto task = Numbered(&CTask::m_nID, 1);
  EXPECT_EQ(task.m_nRemote, later ? 1 : 0);
  EXPECT_EQ(task.m_strConnectTemplate,
            later ? "t1" : "ssh ${RMT_HOST} -x -l ${USER} \"${COMMAND}\"");
  EXPECT_EQ(task.m_strCopyToTemplate,
            later ? "t2" : "scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}");
  EXPECT_EQ(task.m_strCopyFromTemplate,
            later ? "t3" : "scp -r ${USER}@${RMT_HOST}:${RMT_DIR}${FILE} .");
  EXPECT_EQ(task.m_strUser, later ? "t4" : "user");
  EXPECT_EQ(task.m_strHost, later ? "t5" : "host");
  EXPECT_EQ(task.m_strRemoteDir, later ? "t6" : "rmtdir");
  EXPECT_EQ(task.m_nRemoteTimeout, later ? 90 : -1);
}

TEST_P(OldTask, IsListed) {
  std::vector<int> tasks;
  CTask::GetAllTasks(GetPOD(), tasks);
  EXPECT_EQ(tasks, std::vector<int>{1});
}

TEST_P(OldTask, Variables) {
  const auto vars = Numbered(&CDVar::m_nID, 1);
  EXPECT_EQ(vars.m_vnSeq, (Ints{0, 0, 0, 1}));
  EXPECT_EQ(vars.m_vnType, (Ints{20, 22, 23, 20}));
  EXPECT_EQ(vars.m_vnIndIDs, (Ints{1, 3}));
  EXPECT_EQ(vars.m_vnLinkIDs, Ints{});
  EXPECT_EQ(vars.m_vnSynIDs, Ints{2});
  EXPECT_EQ(vars.m_vnConstIDs, Ints{4});
  EXPECT_EQ(ListOf(vars.m_vfIndLowerIn), (Reals{-1.0, -2.0}));
  EXPECT_EQ(ListOf(vars.m_vfIndLower), (Reals{-3.0, -4.0}));
  EXPECT_EQ(ListOf(vars.m_vfIndUpperIn), (Reals{1.0, 2.0}));
  EXPECT_EQ(ListOf(vars.m_vfIndUpper), (Reals{3.0, 4.0}));
  EXPECT_EQ(ListOf(vars.m_vfLinkLower), Reals{});
  EXPECT_EQ(ListOf(vars.m_vfLinkUpper), Reals{});
  EXPECT_EQ(ListOf(vars.m_vfSynLower), Reals{-5.0});
  EXPECT_EQ(ListOf(vars.m_vfSynUpper), Reals{5.0});
  EXPECT_EQ(vars.m_vstrIndName, (Texts{"width", "height"}));
  EXPECT_EQ(vars.m_vstrLinkName, Texts{});
  EXPECT_EQ(vars.m_vstrSynName, Texts{"area"});
  EXPECT_EQ(vars.m_vstrConstName, Texts{"load"});
}

TEST_P(OldTask, ArgumentsOfVariables) {
  const auto vars = Numbered(&CDVar::m_nID, 1);
  EXPECT_EQ(vars.m_vnLinkRef, Ints{});
  EXPECT_EQ(vars.m_vnSynRef, Ints{2});
  EXPECT_EQ(vars.m_mnLinkSubj, IntRows{});
  EXPECT_EQ(vars.m_mnLinkType, IntRows{});
  EXPECT_EQ(vars.m_mnSynSubj, (IntRows{Ints{0, 1}}));
  EXPECT_EQ(vars.m_mnSynType, (IntRows{Ints{20, 20}}));
  EXPECT_EQ(vars.m_vnDiscreteRef, (Ints{4, 0}));
}

TEST_P(OldTask, WhatItsVariablesLack) {
  const auto vars = Numbered(&CDVar::m_nID, 1);
  EXPECT_EQ(ListOf(vars.m_vfIndScale), later ? (Reals{0.5, 0.0}) : (Reals{0.0, 0.0}));
  EXPECT_EQ(ListOf(vars.m_vnConstSet), Ints{0});
  EXPECT_EQ(ListOf(vars.m_vfConstLower), Reals{0.0});
  EXPECT_EQ(ListOf(vars.m_vfConstUpper), Reals{0.0});
  EXPECT_EQ(vars.m_mnSynLen, (IntRows{Ints{1, 1}}));
  EXPECT_EQ(vars.m_vnRandIndex, later ? (Ints{0, -1, -1, -1}) : Ints{});
  EXPECT_EQ(vars.m_vnRandParam, later ? (Ints{-1, 0, 0, 0}) : Ints{});
  EXPECT_EQ(vars.m_vnRandDist, later ? Ints{2} : Ints{});
}

TEST_P(OldTask, Responses) {
  const auto resps = Numbered(&CDResp::m_nID, 1);
  EXPECT_EQ(resps.m_vnSeq, (Ints{0, 0}));
  EXPECT_EQ(resps.m_vnType, (Ints{24, 26}));
  EXPECT_EQ(resps.m_vnIndIDs, Ints{1});
  EXPECT_EQ(resps.m_vnLinkIDs, Ints{});
  EXPECT_EQ(resps.m_vnSynIDs, Ints{2});
  EXPECT_EQ(resps.m_vstrIndName, Texts{"stress"});
  EXPECT_EQ(resps.m_vstrLinkName, Texts{});
  EXPECT_EQ(resps.m_vstrSynName, Texts{"ratio"});
  EXPECT_EQ(resps.m_vnLinkRef, Ints{});
  EXPECT_EQ(resps.m_vnSynRef, Ints{2});
  EXPECT_EQ(resps.m_vnPassFail, later ? Ints{1} : Ints{});
  EXPECT_EQ(resps.m_mnLinkSubj, IntRows{});
  EXPECT_EQ(resps.m_mnLinkType, IntRows{});
  EXPECT_EQ(resps.m_mnSynSubj, (IntRows{Ints{0, 1, 0}}));
  EXPECT_EQ(resps.m_mnSynType, (IntRows{Ints{24, 20, 22}}));
  EXPECT_EQ(resps.m_mnSynLen, (IntRows{Ints{1, 1, 1}}));
  EXPECT_EQ(resps.m_vnRandIndex, later ? (Ints{-1, 0}) : Ints{});
  EXPECT_EQ(resps.m_vnRBOParam, later ? (Ints{0, -1}) : Ints{});
}

TEST_P(OldTask, FunctionsHaveNoLineBreaks) {
  const auto functions = Numbered(&CDEqn::m_nID, 1);
  EXPECT_EQ(functions.m_vstrEquation, (Texts{"a*b  +1", " c "}));
  EXPECT_EQ(functions.m_vstrName, (Texts{"area\nof it", "ratio"}));
  EXPECT_EQ(functions.m_vstrArgs, (Texts{"a,\nb", "c"}));
  EXPECT_EQ(functions.m_vnAuxID, (Ints{2, 3}));
}

/// Kept: the tasks that are gone through are those without a parent.
TEST_P(OldTask, FunctionsOfAChildKeepTheirLineBreaks) {
  if (!later) {
    EXPECT_EQ(CDEqn(GetPOD()).CountObjects(), 1);
    return;
  }
  EXPECT_EQ(Numbered(&CTask::m_nID, 2).m_nParent, 1);
  const auto functions = Numbered(&CDEqn::m_nID, 2);
  EXPECT_EQ(functions.m_vstrEquation, (Texts{"a*b\r\n+1", "\nc\r"}));
}

TEST_P(OldTask, GoalsLinksAndSets) {
  if (later) {
    EXPECT_EQ(CDCons(GetPOD()).CountObjects(), 0);
    return;
  }
  const auto cons = Numbered(&CDCons::m_nID, 1);
  EXPECT_EQ(cons.m_vnSubj, (Ints{0, 0}));
  EXPECT_EQ(cons.m_vnSubjType, (Ints{24, 26}));
  EXPECT_EQ(cons.m_vfBound, (Reals{-250.0, 250.0}));
  EXPECT_EQ(cons.m_vnMult, (Ints{-1, 1}));
  EXPECT_EQ(cons.m_vfScale, (Reals{1.0, 0.25}));
  const auto terms = Numbered(&CDObj::m_nID, 1);
  EXPECT_EQ(terms.m_vnSubj, Ints{0});
  EXPECT_EQ(terms.m_vnSubjType, Ints{24});
  EXPECT_EQ(ListOf(terms.m_vnGoal), Ints{2});
  EXPECT_EQ(ListOf(terms.m_vnHasWorst), Ints{1});
  EXPECT_EQ(ListOf(terms.m_vfWorst), Reals{8.5});
  EXPECT_EQ(ListOf(terms.m_vfWeight), Reals{3.0});
  EXPECT_EQ(ListOf(terms.m_vfTarget), Reals{-4.0});
  const auto links = Numbered(&CDLink::m_nID, 1);
  EXPECT_EQ(links.m_vnAuxID, Ints{1});
  EXPECT_EQ(links.m_vstrName, Texts{"same"});
  EXPECT_EQ(links.m_mdCoef, (RealRows{Reals{0.5, 1.0}}));
  const auto sets = Numbered(&CDSet::m_nID, 1);
  EXPECT_EQ(sets.m_vstrName, Texts{"sizes"});
  EXPECT_EQ(sets.m_vnAuxID, Ints{4});
  EXPECT_EQ(sets.m_mdValues, (RealRows{Reals{1.0, 1.5}}));
}
