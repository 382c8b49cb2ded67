#include <algorithm>
#include <cstdio>
#include <string>

#include "control/ControlReport.h"
#include "environment/Utilities.h"
#include "store/KestErr.h"
#include "store/report.h"
#include "task/TableReport.h"
#include "task/Task.h"
#include "task/TaskDumpBlocks.h"

// The report of a task: what it is, its settings, its counts, its relatives, and what it runs.

namespace {

using kestdb::FlagWord;
using kestdb::ToInt;

unsigned ToUnsigned(const vbUINT32& count) {
  return static_cast<unsigned>(static_cast<unsigned long>(count));
}

/// Kept: the end of a long name is one character more than its line prints, so that the line lacks
/// the last one.
std::string FileName(const std::string& name) {
  return CKUtil::TrimFileName(name, 53);
}

void PrintHead(std::FILE* stream, const CTask& task) {
  std::fprintf(stream, "                        DESIGN TASK CONTROL INFORMATION\n");
  kestdb::PrintBar(stream, '=');
  if (!task.m_strTitle.empty()) {
    const std::size_t length = std::min<std::size_t>(task.m_strTitle.size(), 80);
    std::fprintf(stream, "%*s", static_cast<int>((80 - length) / 2), "");
    std::fprintf(stream, "%s\n", task.m_strTitle.c_str());
  }
  std::fprintf(stream, "%s\n", kestdb::TaskHeading(task));
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "                     Task Database ID : %d\n", ToInt(task.m_nID));
  std::fprintf(stream, "                      Task Created On : %s\n", task.m_strCreated.c_str());
}

void PrintCounts(std::FILE* stream, const CTask& task) {
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "         Independent Design Variables : %u\n",
               ToUnsigned(task.m_uNumIndDV));
  std::fprintf(stream, "              Linked Design Variables : %u\n",
               ToUnsigned(task.m_uNumLinkDV));
  std::fprintf(stream, "           Synthetic Design Variables : %u\n",
               ToUnsigned(task.m_uNumSynDV));
  std::fprintf(stream, "            Constant Design Variables : %u\n",
               ToUnsigned(task.m_uNumConstDV));
  std::fprintf(stream, "              Random Design Variables : %u\n",
               ToUnsigned(task.m_uNumRandDV));
  std::fprintf(stream, "                Independent Responses : %u\n",
               ToUnsigned(task.m_uNumIndResp));
  std::fprintf(stream, "                     Linked Responses : %u\n",
               ToUnsigned(task.m_uNumLinkResp));
  std::fprintf(stream, "                  Synthetic Responses : %u\n",
               ToUnsigned(task.m_uNumSynResp));
  std::fprintf(stream, "                     Random Responses : %u\n",
               ToUnsigned(task.m_uNumRandResp));
  std::fprintf(stream, "                          Constraints : %u\n", ToUnsigned(task.m_uNumCons));
  std::fprintf(stream, "                           Objectives : %u\n", ToUnsigned(task.m_uNumObj));
  std::fprintf(stream, "                  Link Specifications : %u\n",
               ToUnsigned(task.m_uNumLinks));
  std::fprintf(stream, "    Synthetic Function Specifications : %u\n", ToUnsigned(task.m_uNumEqns));
  std::fprintf(stream, "Number of Discrete Set Specifications : %u\n", ToUnsigned(task.m_uNumSets));
}

/// Kept: only a task that has a parent shows its own children.
void PrintRelatives(std::FILE* stream, const CTask& task) {
  if (task.m_nParent == 0) return;
  std::fprintf(stream, "                          Parent Task : %d\n", ToInt(task.m_nParent));
  std::fprintf(stream, "                       Child Task IDs : { ");
  for (const vbINT32& child : task.m_vnChildren) std::fprintf(stream, "%d ", ToInt(child));
  std::fprintf(stream, "}\n");
}

void PrintProgram(std::FILE* stream, const CTask& task) {
  if (task.m_strProgram.empty()) return;
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "        Analysis Program : %.52s\n", FileName(task.m_strProgram).c_str());
  if (!task.m_strArgs.empty()) {
    std::fprintf(stream, "     Program's Arguments : %.52s\n", task.m_strArgs.c_str());
  }
  std::fprintf(stream, "Design Variable Transfer : %.52s\n", FileName(task.m_strVarFile).c_str());
  std::fprintf(stream, "      Responses Transfer : %.52s\n", FileName(task.m_strRespFile).c_str());
}

void PrintRemote(std::FILE* stream, const CTask& task) {
  std::fprintf(stream, "   Run on Remote Machine : %.52s\n", FlagWord(task.m_nRemote));
  if (task.m_nRemote == 0) return;
  std::fprintf(stream, "     Connect To Template : %.52s\n", task.m_strConnectTemplate.c_str());
  std::fprintf(stream, "        Copy To Template : %.52s\n", task.m_strCopyToTemplate.c_str());
  std::fprintf(stream, "      Copy From Template : %.52s\n", task.m_strCopyFromTemplate.c_str());
  std::fprintf(stream, "               User name : %.52s\n", task.m_strUser.c_str());
  std::fprintf(stream, "               Host name : %.52s\n", task.m_strHost.c_str());
  std::fprintf(stream, "   Remote work directory : %.52s\n", task.m_strRemoteDir.c_str());
  std::fprintf(stream, "      Remote run timeout : %d\n", ToInt(task.m_nRemoteTimeout));
}

void PrintSources(std::FILE* stream, const CTask& task) {
  std::fprintf(stream, "    Link to User Routine : %.52s\n", FlagWord(task.m_nUserRoutine));
  std::fprintf(stream, "      Use Approximations : %.52s\n", FlagWord(task.m_nUseApprox));
  if (task.m_nUseApprox != 0) {
    std::fprintf(stream, " Approximations from task: %d\n", ToInt(task.m_nApproxTask));
  }
}

void PrintGradientProgram(std::FILE* stream, const CTask& task) {
  const CDGOControl& block = task.m_DGO;
  if (task.m_nType != 0 || block.m_nIGRAD != 1) return;
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "Link to User Grad. Rout. : %.52s\n", FlagWord(block.m_nGradUserRoutine));
  std::fprintf(stream, "  Grad. Analysis Program : %.52s\n",
               FileName(block.m_strGradProgram).c_str());
  std::fprintf(stream, " Grad. Program Arguments : %.52s\n", block.m_strGradArgs.c_str());
  std::fprintf(stream, "Design Variable Transfer : %.52s\n",
               FileName(block.m_strGradVarFile).c_str());
  std::fprintf(stream, "      Gradients Transfer : %.52s\n",
               FileName(block.m_strGradRespFile).c_str());
}

}  // namespace

void CTask::Dump(POD* pod, std::FILE* stream, int nTask) try {
  kestdb::ReportTable<CTask>(pod, stream, nTask, [stream](const CTask& task) {
    PrintHead(stream, task);
    kestdb::PrintSettings(stream, task);
    PrintCounts(stream, task);
    PrintRelatives(stream, task);
    PrintProgram(stream, task);
    PrintRemote(stream, task);
    PrintSources(stream, task);
    PrintGradientProgram(stream, task);
    kestdb::PrintEnd(stream);
  });
}
LOG_AND_RETHROW
