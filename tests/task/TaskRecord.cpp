#include "tests/task/TaskRecord.h"

namespace {

// The templates for remote machines.
const std::string connect =
    "2A 00 00 00 73 73 68 20 24 7B 52 4D 54 5F 48 4F 53 54 7D 20 2D 78 20 2D "
    "6C 20 24 7B 55 53 45 52 7D 20 22 24 7B 43 4F 4D 4D 41 4E 44 7D 22 ";
const std::string copyTo =
    "2D 00 00 00 73 63 70 20 2D 72 20 24 7B 46 49 4C 45 7D 20 24 7B 55 53 45 "
    "52 7D 40 24 7B 52 4D 54 5F 48 4F 53 54 7D 3A 24 7B 52 4D 54 5F 44 49 52 "
    "7D ";
const std::string copyFrom =
    "2E 00 00 00 73 63 70 20 2D 72 20 24 7B 55 53 45 52 7D 40 24 7B 52 4D 54 "
    "5F 48 4F 53 54 7D 3A 24 7B 52 4D 54 5F 44 49 52 7D 24 7B 46 49 4C 45 7D "
    "20 2E ";
const std::string user = "04 00 00 00 75 73 65 72 ";
const std::string host = "04 00 00 00 68 6F 73 74 ";
const std::string folder = "06 00 00 00 72 6D 74 64 69 72 ";

const Typed<std::vector<vbINT32>> none{{}, "00 00 00 00 "};

/// A count of the byte.
Field<CTask> Count(vbUINT32 CTask::*count, unsigned long value, const std::string& byte,
                   int firstVersion = 1) {
  return {count, {value, Word(byte)}, {0UL, Word("00")}, firstVersion};
}

}  // namespace

TaskFields FieldsBeforeBlocks() {
  using C = CTask;
  return {
      {&C::m_nType, {3, Word("03")}, {0, Word("00")}},
      {&C::m_strTitle, {"A b", "03 00 00 00 41 20 62 "}, empty},
      {&C::m_strProgram, Letter('p', "70"), {"analyze.exe", analyze}},
      {&C::m_nUserRoutine, {8, Word("08")}, {0, Word("00")}, 11},
      {&C::m_nUseApprox, {9, Word("09")}, {0, Word("00")}, 19},
      {&C::m_nApproxTask, {10, Word("0A")}, {0, Word("00")}, 19},
      {&C::m_strArgs, Letter('a', "61"), empty},
      {&C::m_strVarFile, Letter('v', "76"), {"dvar.kef", dvar}},
      {&C::m_strRespFile, Letter('r', "72"), {"resp.kef", resp}},
      {&C::m_nRemote, {11, Word("0B")}, {0, Word("00")}, 12},
      {&C::m_strConnectTemplate,
       Letter('C', "43"),
       {"ssh ${RMT_HOST} -x -l ${USER} \"${COMMAND}\"", connect},
       12},
      {&C::m_strCopyToTemplate,
       Letter('T', "54"),
       {"scp -r ${FILE} ${USER}@${RMT_HOST}:${RMT_DIR}", copyTo},
       12},
      {&C::m_strCopyFromTemplate,
       Letter('F', "46"),
       {"scp -r ${USER}@${RMT_HOST}:${RMT_DIR}${FILE} .", copyFrom},
       12},
      {&C::m_strUser, Letter('u', "75"), {"user", user}, 12},
      {&C::m_strHost, Letter('h', "68"), {"host", host}, 12},
      {&C::m_strRemoteDir, Letter('d', "64"), {"rmtdir", folder}, 12},
      {&C::m_nRemoteTimeout, {60, Word("3C")}, {-1, minusOne}, 13},
  };
}

TaskFields FieldsOfBlocks() {
  return EmbeddedFields<CTask>(TaskVersion);
}

TaskFields FieldsBehindBlocks() {
  using C = CTask;
  return {
      {&C::m_vnAnalyzeFlags, {{1, 0}, "02 00 00 00 01 00 00 00 00 00 00 00 "}, none},
      {&C::m_vnPointLocked, {{0, 1, 1}, "03 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 "}, none},
      {&C::m_uNumIndDV, {0xFEDCBA98UL, "98 BA DC FE "}, {0UL, Word("00")}},
      Count(&C::m_uNumLinkDV, 33, "21"),
      Count(&C::m_uNumSynDV, 34, "22"),
      Count(&C::m_uNumConstDV, 35, "23"),
      Count(&C::m_uNumIndResp, 36, "24"),
      Count(&C::m_uNumLinkResp, 37, "25"),
      Count(&C::m_uNumSynResp, 38, "26"),
      Count(&C::m_uNumCons, 39, "27"),
      Count(&C::m_uNumObj, 40, "28"),
      Count(&C::m_uNumLinks, 41, "29"),
      Count(&C::m_uNumEqns, 42, "2A"),
      Count(&C::m_uNumSets, 43, "2B"),
      Count(&C::m_uNumPoints, 44, "2C"),
      Count(&C::m_uNumRandDV, 45, "2D", 10),
      Count(&C::m_uNumRandResp, 46, "2E", 10),
      {&C::m_strCreated, {"Mon", "03 00 00 00 4D 6F 6E "}, empty},
      {&C::m_nParent, {-2, "FE FF FF FF "}, {0, Word("00")}},
      {&C::m_nRestartOf, {47, Word("2F")}, {0, Word("00")}, 20},
      {&C::m_vnChildren, {{48, 50}, "02 00 00 00 30 00 00 00 32 00 00 00 "}, none},
      {&C::m_vnRestarts, {{49, -1}, "02 00 00 00 31 00 00 00 FF FF FF FF "}, none, 21},
  };
}

TaskFields AllTaskFields() {
  return Joined(Joined(FieldsBeforeBlocks(), FieldsOfBlocks()), FieldsBehindBlocks());
}
