#include <algorithm>
#include <string>
#include <valarray>

#include "definition/DefinitionReport.h"
#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "results/RDOE.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"
#include "task/Task.h"

// The report of a design of experiments.

namespace {

using Numbers = std::valarray<int>;

/// Hands the numbers in lines of at most `columns` to `print(line, whether it is the first)`.
template <class Print>
void ForEachLine(const Numbers& numbers, int columns, Print print) {
  std::string text;
  std::string line;
  bool isFirst = true;
  for (const int number : numbers) {
    char next[16];
    std::snprintf(next, sizeof next, "%d ", number);
    text += next;
    if (text.size() <= static_cast<std::size_t>(columns)) continue;
    COSUtil::SplitLine(text, columns, line);
    print(line, isFirst);
    isFirst = false;
  }
  if (!text.empty()) print(text, isFirst);
}

void PrintPoints(std::FILE* stream, const Numbers& points) {
  std::fprintf(stream, "Point Numbers of the DOE Design Points:\n");
  ForEachLine(points, 75, [stream](const std::string& line, bool) {
    std::fprintf(stream, "     %s\n", line.c_str());
  });
}

/// How many integers make a generator. A fraction of 2**(n - o) points has o generators; where the
/// option doesn't divide the array into as many, each integer is one.
std::size_t GeneratorLength(const CRDOE& design, const CTask& task) {
  const int count = task.m_DOE.GetOption();
  const std::size_t size = design.m_Generators.size();
  if (count < 1 || size % static_cast<std::size_t>(count) != 0) return 1;
  return std::max<std::size_t>(1, size / static_cast<std::size_t>(count));
}

void PrintGenerator(std::FILE* stream, int number, const Numbers& generator) {
  ForEachLine(generator, 71, [&](const std::string& line, bool isFirst) {
    if (isFirst) {
      std::fprintf(stream, "%6d  %s\n", number, line.c_str());
    } else {
      std::fprintf(stream, "         %s\n", line.c_str());
    }
  });
}

void PrintFraction(std::FILE* stream, const CRDOE& design, std::size_t length) {
  std::fprintf(stream, "Resolution of the fractional factorial design = %d\n",
               kestdb::ToInt(design.m_nResolution));
  std::fprintf(stream, "Number                Generators of the fractional factorial design\n");
  std::fprintf(
      stream, "------  ------------------------------------------------------------------------\n");
  int number = 0;
  for (std::size_t first = 0; first < design.m_Generators.size(); first += length) {
    PrintGenerator(stream, ++number, design.m_Generators[std::slice(first, length, 1)]);
  }
}

void PrintQuality(std::FILE* stream, const CRDOE& design) {
  kestdb::PrintBar(stream, '-');
  std::fprintf(stream, "Logarithm of the determinant of the D-optimal design = %g\n",
               double{design.m_fLogDet});
  std::fprintf(stream, "D-Efficiency = %g\n", double{design.m_fDEfficiency});
  std::fprintf(stream, "A-Efficiency = %g\n", double{design.m_fAEfficiency});
  std::fprintf(stream, "G-Efficiency = %g\n", double{design.m_fGEfficiency});
  if (design.m_fPredVariance != CRDOE::kNoVariance) {
    std::fprintf(stream, "Scaled average predicted variance (all responses) = %g\n",
                 double{design.m_fPredVariance});
  }
}

}  // namespace

void CRDOE::Dump(POD* pod, std::FILE* stream, int taskID) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CRDOE design(pod);
  design.m_nTaskID = taskID;
  if (!design.GetObject()) Throw<CGetObject>();
  const auto task = kestdb::RequireByID<CTask, CGetObject>(pod, taskID);
  const bool isFraction = design.m_nResolution != 0;
  const std::size_t length = isFraction ? GeneratorLength(design, task) : 1;

  std::fprintf(stream, "                            DOE RESULTS SUMMARY\n");
  kestdb::PrintBar(stream, '=');
  PrintPoints(stream, design.m_Points);
  if (isFraction) PrintFraction(stream, design, length);
  if (task.m_DOE.m_nDOptimal != 0) PrintQuality(stream, design);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
