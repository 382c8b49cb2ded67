#include <string>
#include <utility>
#include <vector>

#include "definition/DefinitionReport.h"
#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "results/Iter.h"
#include "results/IterReport.h"
#include "results/KnownPoints.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"
#include "task/TableReport.h"

// The report of an iteration: where the run stood, the best designs, and one point's variables,
// objectives and constraints.

namespace {

using kestdb::Iteration;
using kestdb::ObjectiveRow;
using kestdb::ToInt;

// ---- What the report is about ----

CIter LoadIter(POD* pod, int taskID, int number, int subIter) {
  CIter iter(pod);
  iter.m_nTaskID = taskID;
  iter.m_nIter = number;
  iter.m_nSubIter = subIter;
  if (!iter.GetObject()) Throw<CGetObject>();
  return iter;
}

Iteration LoadIteration(POD* pod, int taskID, int number, int subIter, bool bestPoint) {
  CIter iter = LoadIter(pod, taskID, number, subIter);
  Iteration iteration{kestdb::RequireByID<CTask, CGetObject>(pod, taskID),
                      std::move(iter),
                      kestdb::RequireByID<CDVar, CGetObject>(pod, taskID),
                      kestdb::RequireByID<CDResp, CGetObject>(pod, taskID),
                      kestdb::RequireByID<CDCons, CGetObject>(pod, taskID),
                      CDObj(pod),
                      CDPoint(pod)};
  const vbINT32& type = iteration.task.m_nType;
  if (type < 0 || type > 4) LError("Invalid functional module type!\n");
  if (type != 2 && !kestdb::LoadByID(iteration.terms, taskID)) Throw<CGetObject>();
  const bool best = bestPoint && iteration.HasBestDesign();
  iteration.point = kestdb::RequirePoint(
      pod, taskID, best ? iteration.iter.m_nBestPoint : iteration.iter.m_nThisPoint);
  return iteration;
}

// ---- The head ----

void PrintHeading(std::FILE* stream, const CIter& iter) {
  if (iter.m_nSubIter == 0) {
    std::fprintf(stream, "                         FINAL RESULTS FOR ITERATION %d\n",
                 ToInt(iter.m_nIter));
  } else {
    std::fprintf(stream, "                    RESULTS FOR ITERATION %d, SUB-ITERATION %d\n",
                 ToInt(iter.m_nIter), ToInt(iter.m_nSubIter));
  }
  kestdb::PrintBar(stream, '=');
}

void PrintBest(std::FILE* stream, const CIter& iter, bool objectives, bool constraints) {
  std::fprintf(stream, "                      Best Design Point : % d\n", ToInt(iter.m_nBestPoint));
  if (objectives) {
    std::fprintf(stream, "                         Best Objective : % .7g\n",
                 double{iter.m_fBestObjective});
  }
  if (constraints) {
    std::fprintf(stream, "                       Worst Constraint : %# .7g\n",
                 double{iter.m_fBestConstraint});
  }
}

void PrintState(std::FILE* stream, const Iteration& iteration) {
  const CIter& iter = iteration.iter;
  const bool best = iteration.HasBestDesign();
  const bool objectives = best && !iteration.terms.m_vnSubj.empty();
  const bool constraints = iteration.IsOptimization() && !iteration.cons.m_vnSubj.empty();
  if (best) PrintBest(stream, iter, objectives, constraints);
  std::fprintf(stream, "                      This Design Point : % d\n", ToInt(iter.m_nThisPoint));
  if (objectives) {
    std::fprintf(stream, "                         This Objective : % .7g\n",
                 double{iter.m_fThisObjective});
  }
  if (constraints) {
    std::fprintf(stream, "                  This Worst Constraint : %# .7g\n",
                 double{iter.m_fThisConstraint});
  }
  std::fprintf(stream, "\n");
}

// ---- The Pareto front ----

/// What stands above a column, in two lines.
struct Head {
  std::string upper;
  std::string lower;
};

/// A name that is longer than two lines is whole in the table of objectives.
Head HeadOf(const std::string& name) {
  const std::vector<std::string> pieces = kestdb::NamePieces(name);
  return pieces.size() == 1 ? Head{"", pieces[0]} : Head{pieces[0], pieces[1]};
}

/// The columns are the objectives, or those and the worst constraint. What any other number of
/// values means is not known.
std::vector<Head> HeadsOf(const std::vector<ObjectiveRow>& objectives, std::size_t columns) {
  std::vector<Head> heads(columns);
  const bool withConstraint = columns == objectives.size() + 1;
  if (columns != objectives.size() && !withConstraint) return heads;
  for (std::size_t i = 0; i < objectives.size(); ++i) heads[i] = HeadOf(*objectives[i].name);
  if (withConstraint) heads.back() = {"Worst", "Constraint"};
  return heads;
}

void PrintHeadLine(std::FILE* stream, const char* ofPoints, const std::vector<Head>& heads,
                   std::string Head::*line) {
  std::fprintf(stream, "%s", ofPoints);
  for (const Head& head : heads) std::fprintf(stream, "   %14.14s", (head.*line).c_str());
  std::fprintf(stream, "\n");
}

void PrintParetoHead(std::FILE* stream, const std::vector<Head>& heads) {
  std::fprintf(stream, "                 Pareto Front Point/Best Design Point Information\n");
  PrintHeadLine(stream, "  Design", heads, &Head::upper);
  PrintHeadLine(stream, "Point ID", heads, &Head::lower);
  std::fprintf(stream, "--------");
  for (std::size_t i = 0; i < heads.size(); ++i) std::fprintf(stream, "   --------------");
  std::fprintf(stream, "\n");
}

/// The number of values that each point of the front has.
std::size_t ValuesPerPoint(const CIter& iter) {
  const std::size_t points = iter.m_ParetoPoints.size();
  if (points == 0) return 0;
  if (iter.m_ParetoValues.size() % points != 0) Throw<CInvalidArgument>();
  return iter.m_ParetoValues.size() / points;
}

void PrintPareto(std::FILE* stream, const CIter& iter, std::size_t columns,
                 const std::vector<ObjectiveRow>& objectives) {
  if (iter.m_ParetoPoints.size() == 0) return;
  PrintParetoHead(stream, HeadsOf(objectives, columns));
  for (std::size_t i = 0; i < iter.m_ParetoPoints.size(); ++i) {
    std::fprintf(stream, "%8d", iter.m_ParetoPoints[i]);
    for (std::size_t column = 0; column < columns; ++column) {
      std::fprintf(stream, "   %#14.7g", iter.m_ParetoValues[i * columns + column]);
    }
    std::fprintf(stream, "\n");
  }
  std::fprintf(stream, "\n");
}

}  // namespace

void CIter::Dump(POD* pod, std::FILE* stream, int taskID, bool allConstraints, int iter,
                 int subIter, bool bestPoint) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const Iteration iteration = LoadIteration(pod, taskID, iter, subIter, bestPoint);
  const std::size_t paretoColumns = ValuesPerPoint(iteration.iter);
  const auto variables = kestdb::VariableRows(iteration);
  const auto objectives = kestdb::ObjectiveRows(iteration);
  const auto constraints = kestdb::ConstraintRows(iteration, allConstraints);

  PrintHeading(stream, iteration.iter);
  PrintState(stream, iteration);
  PrintPareto(stream, iteration.iter, paretoColumns, objectives);
  kestdb::PrintVariables(stream, variables);
  kestdb::PrintObjectives(stream, objectives);
  kestdb::PrintConstraints(stream, constraints);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
