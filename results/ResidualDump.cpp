#include <string>
#include <valarray>
#include <vector>

#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/ModelTerms.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "store/walk.h"
#include "task/DResp.h"
#include "task/TableReport.h"

// The report of an analysis. All that can be wrong with it is found before a line is printed.

namespace {

CResidual LoadAnalysis(POD* pod, int taskID, int resp) {
  CResidual analysis(pod);
  analysis.m_nTaskID = taskID;
  analysis.m_nResp = resp;
  if (!analysis.GetObject()) Throw<CGetObject>();
  kestdb::RequireSize(analysis.m_Predicted.size(), analysis.m_HDiagonal, analysis.m_Residual,
                      analysis.m_Standardized, analysis.m_Studentized, analysis.m_RStudentized,
                      analysis.m_Press, analysis.m_Cook);
  return analysis;
}

int CountTerms(POD* pod, int taskID, int resp) {
  CApproxModels model(pod);
  model.m_nTaskID = taskID;
  model.m_nResp = resp;
  if (!model.GetObject()) Throw<CGetObject>();
  return model.GetNumTerms();
}

std::string ResponseName(POD* pod, int taskID, int resp) {
  const auto resps = kestdb::RequireByID<CDResp, CGetObject>(pod, taskID);
  return kestdb::ElementAt(resps.m_vstrIndName, resp);
}

/// The task's points count from 0.
std::vector<int> Positions(std::size_t count) {
  std::vector<int> numbers(count);
  for (std::size_t i = 0; i < count; ++i) numbers[i] = static_cast<int>(i);
  return numbers;
}

std::vector<int> DesignNumbers(POD* pod, int taskID, std::size_t count) {
  CRDOE design(pod);
  design.m_nTaskID = taskID;
  if (!design.GetObject() || design.m_Points.size() != count) return Positions(count);
  return {begin(design.m_Points), end(design.m_Points)};
}

void PrintHead(std::FILE* stream, const std::string& response) {
  const std::vector<std::string> name = kestdb::NamePieces(response, 70);
  std::fprintf(stream, "                                RESIDUAL SUMMARY\n");
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "Response: %-70.70s\n", name.front().c_str());
  for (std::size_t i = 1; i < name.size(); ++i) {
    std::fprintf(stream, "          %-70.70s\n", name[i].c_str());
  }
  kestdb::PrintBar(stream, '-');
}

void PrintVariance(std::FILE* stream, const CResidual& analysis, int terms) {
  const int points = static_cast<int>(analysis.m_Predicted.size());
  std::fprintf(stream, "                                   ANOVA Table\n");
  std::fprintf(stream, "         Degrees\n");
  std::fprintf(stream,
               "Source  of Freedom  Sum of Squares    Mean Square        F0             P\n");
  std::fprintf(stream,
               "------  ----------  --------------  --------------  ------------  ------------\n");
  std::fprintf(stream, " Model  %10d  %#14.7g  %#14.7g  %#12.5g  %#12.5g\n", terms - 1,
               double{analysis.m_fModelSS}, double{analysis.m_fModelMS}, double{analysis.m_fF0},
               double{analysis.m_fP});
  std::fprintf(stream, " Error  %10d  %#14.7g  %#14.7g\n", points - terms,
               double{analysis.m_fErrorSS}, double{analysis.m_fErrorMS});
  std::fprintf(stream, " Total  %10d  %#14.7g\n", points - 1, double{analysis.m_fTotalSS});
}

void PrintStatistics(std::FILE* stream, const CResidual& analysis) {
  std::fprintf(stream, "                       Sum of Residuals : %#14.7g\n",
               double{analysis.m_fSumResiduals});
  std::fprintf(stream, "Prediction Error Sum of Squares (PRESS) : %#14.7g\n",
               double{analysis.m_fPRESS});
  std::fprintf(stream, "                 Root Mean Square Error : %#14.7g\n",
               double{analysis.m_fRMSE});
  std::fprintf(stream, "                          Mean Response : %#14.7g\n",
               double{analysis.m_fMeanResponse});
  std::fprintf(stream, "               Coefficient of Variation : %#14.7g\n",
               double{analysis.m_fCoeffVariation});
  std::fprintf(stream, "                                   R**2 : %#14.7g\n",
               double{analysis.m_fR2});
  std::fprintf(stream, "                          Adjusted R**2 : %#14.7g\n",
               double{analysis.m_fAdjR2});
  std::fprintf(stream, "                        R**2 from PRESS : %#14.7g\n",
               double{analysis.m_fR2Press});
}

void PrintRow(std::FILE* stream, int number, double first, double second, double third,
              double fourth) {
  std::fprintf(stream, "%6d  %#16.9g  %#16.9g  %#16.9g  %#16.9g\n", number, first, second, third,
               fourth);
}

void PrintResiduals(std::FILE* stream, const CResidual& analysis, const std::vector<int>& numbers) {
  std::fprintf(stream,
               "Design     Predicted                          Standardized      Studentized\n");
  std::fprintf(stream,
               " Point      Response          Residual          Residual          Residual\n");
  std::fprintf(stream,
               "------  ----------------  ----------------  ----------------  ----------------\n");
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    PrintRow(stream, numbers[i], analysis.m_Predicted[i], analysis.m_Residual[i],
             analysis.m_Standardized[i], analysis.m_Studentized[i]);
  }
}

void PrintInfluence(std::FILE* stream, const CResidual& analysis, const std::vector<int>& numbers) {
  std::fprintf(stream,
               "Design   R-Studentized         PRESS                               Cook's\n");
  std::fprintf(stream,
               " Point      Residual          Residual         H^Diagonal        D-Statistic\n");
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    PrintRow(stream, numbers[i], analysis.m_RStudentized[i], analysis.m_Press[i],
             analysis.m_HDiagonal[i], analysis.m_Cook[i]);
  }
}

}  // namespace

void CResidual::Dump(POD* pod, std::FILE* stream, int taskID, int resp, bool designNumbers) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  const CResidual analysis = LoadAnalysis(pod, taskID, resp);
  const int terms = CountTerms(pod, taskID, resp);
  const std::string response = ResponseName(pod, taskID, resp);
  const std::size_t points = analysis.m_Predicted.size();
  const std::vector<int> numbers =
      designNumbers ? DesignNumbers(pod, taskID, points) : Positions(points);

  PrintHead(stream, response);
  PrintVariance(stream, analysis, terms);
  PrintStatistics(stream, analysis);
  PrintResiduals(stream, analysis, numbers);
  PrintInfluence(stream, analysis, numbers);
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
