#include "tests/control/DesignControlRecord.h"

ControlFields OuterFields() {
  using C = CDesignControl;
  const Typed<std::vector<vbINT32>> tasks{{3, 1, 258},
                                          "03 00 00 00 03 00 00 00 01 00 00 00 02 01 00 00 "};
  return {
      {&C::m_nTaskType, {4, Word("04")}, {0, Word("00")}},
      {&C::m_strTitle, {"A b", "03 00 00 00 41 20 62 "}, empty},
      {&C::m_strProgram, Letter('p', "70"), {"analyze.exe", analyze}},
      {&C::m_nUserRoutine, {8, Word("08")}, {0, Word("00")}, 8},
      {&C::m_nUseApprox, {9, Word("09")}, {0, Word("00")}, 16},
      {&C::m_nApproxTask, {10, Word("0A")}, {0, Word("00")}, 16},
      {&C::m_strArgs, Letter('a', "61"), empty},
      {&C::m_strVarFile, Letter('v', "76"), {"dvar.kef", dvar}},
      {&C::m_strRespFile, Letter('r', "72"), {"resp.kef", resp}},
      {&C::m_nRemote, {11, Word("0B")}, {0, Word("00")}, 9},
      {&C::m_nUseSSH, {12, Word("0C")}, {1, Word("01")}, 9},
      {&C::m_strSSHConnect, Letter('c', "63"), empty, 9},
      {&C::m_strSSHCopyTo, Letter('t', "74"), empty, 9},
      {&C::m_strSSHCopyFrom, Letter('f', "66"), empty, 9},
      {&C::m_strConnect, Letter('C', "43"), empty, 9},
      {&C::m_strCopyTo, Letter('T', "54"), empty, 9},
      {&C::m_strCopyFrom, Letter('F', "46"), empty, 9},
      {&C::m_strUser, Letter('u', "75"), empty, 9},
      {&C::m_strHost, Letter('h', "68"), empty, 9},
      {&C::m_strRemoteDir, Letter('d', "64"), empty, 9},
      {&C::m_nTimeout, {60, Word("3C")}, {-1, minusOne}, 10},
      {&C::m_nReusePoints, {13, Word("0D")}, {0, Word("00")}},
      {&C::m_fPointTol, {0.25, Real("3F D0")}, {0.0, Real("00 00")}},
      {&C::m_vnCheckTasks, tasks, {{}, Word("00")}},
  };
}

ControlFields BlockFields() {
  return EmbeddedFields<CDesignControl>(ControlVersion);
}

ControlFields AllFields() {
  return Joined(OuterFields(), BlockFields());
}
