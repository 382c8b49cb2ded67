#include <optional>

#include "control/NGOControl.h"
#include "definition/DefinitionReport.h"
#include "maintenance/Lock.h"
#include "results/Message.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "task/Task.h"

// The summary of a run: its continuous part, the best of its discrete sub-tasks, and where the time
// went.

namespace {

using kestdb::ToInt;

constexpr int kNSGA = 2;  // of CNGOControl::m_nMethod

/// What the summary is about, all of it read before a line is printed.
struct Run {
  CTask task;
  CResult result;
  CMessage messages;
  std::optional<CResult> subTask;  ///< The best discrete sub-task's

  bool IsDesignOfExperiments() const { return task.m_nType == 2; }
  /// A run that spreads its points over the design space has no one best design.
  bool HasBestDesign() const {
    return !IsDesignOfExperiments() && (task.m_nType != 3 || task.m_NGO.m_nMethod != kNSGA);
  }
};

template <class Object>
bool Load(Object& object, int taskID) {
  object.m_nID = taskID;
  return object.GetObject();
}

Run LoadRun(POD* pod, int taskID) {
  Run run{CTask(pod), CResult(pod), CMessage(pod), std::nullopt};
  if (!Load(run.result, taskID)) Throw<CGetObject>();
  if (!Load(run.task, taskID)) Throw<CGetObject>();
  if (!Load(run.messages, taskID)) Throw<CGetObject>();
  if (run.result.m_nBestSubTask > 0) {
    CResult subTask(pod);
    if (Load(subTask, ToInt(run.result.m_nBestSubTask))) run.subTask = subTask;
  }
  return run;
}

const char* StatusText(const vbINT32& status) {
  switch (status) {
    case 0:
      return "Not Run";
    case 1:
      return "Running";
    case 2:
      return "Completed";
    case 4:
      return "Task Terminated Prematurely!";
    default:
      return "unknown";
  }
}

/// Where the parts of a run have the same text.
const char* CommonStopText(const vbINT32& code) {
  switch (code) {
    case 0:
      return "normal";
    case 1:
      return "absolute hard convergence";
    case 2:
      return "relative hard convergence";
    case 3:
      return "Kuhn-Tucker conditions were met";
    case 4:
      return "null search direction in the QP sub-problem";
    case 10:
    case 11:
    case 12:
    case 13:
      return "ERROR detected in ZEF";
    case 15:
      return "soft convergence";
    case 16:
      return "synthetic function error";
    case 17:
      return "MATLAB engine error";
    case 18:
      return "no feasible solution";
    case 90:
      return "approximations not changing";
    case 91:
      return "approximations not changing, no restart because number of points required exceeds maximum number of points specified";
    case 92:
      return "approximations not changing, no restart because target is matched";
    default:
      return "unknown";
  }
}

bool IsDesignError(const vbINT32& code) {
  return (code >= 51 && code <= 55) || (code >= 61 && code <= 69);
}

const char* ContinuousStopText(const Run& run) {
  const vbINT32& code = run.result.m_nStopCode;
  if (code == 14) return "maximum iterations reached";
  if (!IsDesignError(code)) return CommonStopText(code);
  return run.IsDesignOfExperiments() ? "DOE ERROR" : "ERROR generating design points for RSA";
}

const char* DiscreteStopText(const vbINT32& code) {
  return code == 14 ? "maximum iterations" : CommonStopText(code);
}

void PrintHead(std::FILE* stream, const Run& run) {
  std::fprintf(stream, "                                RESULTS SUMMARY\n");
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "                         Run Started On : %s\n",
               run.result.m_strStarted.c_str());
  std::fprintf(stream, "                         Run Stopped On : %s\n",
               run.result.m_strStopped.c_str());
}

void PrintCounts(std::FILE* stream, const Run& run) {
  std::fprintf(stream, "                       Warning Messages : %d\n",
               run.messages.GetNumWarnings());
  std::fprintf(stream, "                         Error Messages : %d\n",
               run.messages.GetNumErrors());
  if (const int exceptions = run.messages.GetNumExceptions(); exceptions > 0) {
    std::fprintf(stream, "                             Exceptions : %d\n", exceptions);
  }
  std::fprintf(stream, "                   Total Analysis Calls : %d\n",
               ToInt(run.result.m_nAnalysisCalls));
  if (run.task.m_nType == 0) {
    std::fprintf(stream, "                Total Gradient Requests : %d\n",
                 ToInt(run.result.m_nGradientRequests));
  }
}

void PrintBestDesign(std::FILE* stream, const CResult& result, bool subIterations) {
  std::fprintf(stream, "     Total # Points in the Design Space : %d\n",
               ToInt(result.m_nTotalPoints));
  std::fprintf(stream, "   Iteration of the Best Design (cont.) : %d\n", ToInt(result.m_nBestIter));
  if (subIterations) {
    std::fprintf(stream, "   Sub-Iter. of the Best Design (cont.) : %d\n",
                 ToInt(result.m_nBestSubIter));
  }
  std::fprintf(stream, "                 Best Objective (cont.) : %#.7g\n",
               double{result.m_fBestObjective});
  if (result.m_fWorstConstraint != CResult::kNoConstraint) {
    std::fprintf(stream, "               Worst Constraint (cont.) : %#.7g\n",
                 double{result.m_fWorstConstraint});
  }
}

void PrintEnding(std::FILE* stream, const Run& run) {
  const char* status = StatusText(run.result.m_nRunStatus);
  const char* stop = ContinuousStopText(run);
  if (run.IsDesignOfExperiments()) {
    std::fprintf(stream, "                             Run Status : %s\n", status);
    std::fprintf(stream, "                              Stop Code : %s\n", stop);
  } else {
    std::fprintf(stream, "                  Continuous Run Status : %s\n", status);
    std::fprintf(stream, "                   Continuous Stop Code : %s\n", stop);
  }
  if (!run.result.m_strLastMessage.empty()) {
    std::fprintf(stream, "Last Message : %s\n", run.result.m_strLastMessage.c_str());
  }
}

void PrintSubTask(std::FILE* stream, const CResult& result, bool subIterations) {
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "                       Discrete Sub-Task Results Summary\n");
  std::fprintf(stream, "Iteration of the Best Design (discrete) : %d\n", ToInt(result.m_nBestIter));
  if (subIterations) {
    std::fprintf(stream, "Sub-Iter. of the Best Design (discrete) : %d\n",
                 ToInt(result.m_nBestSubIter));
  }
  std::fprintf(stream, "              Best Objective (discrete) : %#.7g\n",
               double{result.m_fBestObjective});
  if (result.m_fWorstConstraint != CResult::kNoConstraint) {
    std::fprintf(stream, "            Worst Constraint (discrete) : %#.7g\n",
                 double{result.m_fWorstConstraint});
  }
  std::fprintf(stream, "                     Discrete Stop Code : %s\n",
               DiscreteStopText(result.m_nStopCode));
  if (!result.m_strLastMessage.empty()) {
    std::fprintf(stream, "Last Discrete Message : %s\n", result.m_strLastMessage.c_str());
  }
}

void PrintDiscrete(std::FILE* stream, const Run& run, bool subIterations) {
  const vbINT32& subTask = run.result.m_nBestSubTask;
  if (subTask == -1) {
    std::fprintf(stream, "                    ***** ERROR - NO DISCRETE SOLUTION *****\n");
  }
  if (subTask <= 0) return;
  std::fprintf(stream, "       Database ID of the best sub-task : %d\n", ToInt(subTask));
  if (run.subTask) {
    PrintSubTask(stream, *run.subTask, subIterations);
  } else {
    std::fprintf(stream, "***** ERROR - could not retrieve sub-task results\n");
  }
}

void PrintTiming(std::FILE* stream, const CResult& result) {
  const auto& times = result.m_fTimes;
  if (result.m_nRunStatus != 2 || !(times[19] > 0.0)) return;
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "                                Timing (seconds)\n");
  std::fprintf(stream, "                               Analysis : %9.2f\n", double{times[1]});
  std::fprintf(stream, "                               Transfer : %9.2f\n", times[7] + times[8]);
  std::fprintf(stream, "                               Database : %9.2f\n", times[9] + times[10]);
  std::fprintf(stream, "                                  Total : %9.2f\n", double{times[19]});
}

}  // namespace

void CResult::Dump(POD* pod, std::FILE* stream, int taskID, bool subIterations) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const Run run = LoadRun(pod, taskID);
  PrintHead(stream, run);
  PrintCounts(stream, run);
  if (run.HasBestDesign()) {
    PrintBestDesign(stream, run.result, subIterations);
  } else {
    std::fprintf(stream, "             Points in the Design Space : %d\n",
                 ToInt(run.result.m_nNumPoints));
  }
  PrintEnding(stream, run);
  PrintDiscrete(stream, run, subIterations);
  PrintTiming(stream, run.result);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
