#include <string>
#include <valarray>
#include <vector>

#include "definition/DefinitionReport.h"
#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/ModelTerms.h"
#include "store/KestErr.h"
#include "store/assertion.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "task/TableReport.h"

// The report of one model. All that can be wrong with it is found before a line is printed.

namespace {

struct Loaded {
  CApproxModels model;
  kestdb::ModelNames names;
};

/// The lock ends here: what the report asserts doesn't leave it behind.
Loaded Load(POD* pod, int taskID, int resp) {
  const CLock lock(pod, 0);
  CApproxModels model(pod);
  model.m_nTaskID = taskID;
  model.m_nResp = resp;
  if (!model.GetObject()) Throw<CGetObject>();
  return {model, kestdb::LoadModelNames(pod, taskID)};
}

void RequireFit(const CApproxModels& model, const kestdb::ModelNames& names) {
  const std::size_t terms = model.m_Coefficients.size();
  KESTDB_ASSERT(model.m_Model.size() == terms * names.variables.size(),
                "vnModel.size() == appmod.GetNumTerms() * nNumDV");
  kestdb::RequireSize(terms, model.m_StdErrors, model.m_TStats, model.m_PValues);
}

void PrintTerm(std::FILE* stream, const CApproxModels& model, const kestdb::ModelNames& names,
               std::size_t term) {
  const std::size_t count = names.variables.size();
  const std::slice exponents(term * count, count, 1);
  const std::vector<std::string> name = kestdb::NamePieces(
      kestdb::TermName(model.m_Model[exponents], names.variables), kestdb::kTermColumns);
  std::fprintf(stream, "%23.23s  %#12.5g  %#12.5g  %#12.5g  %#12.5g\n", name.front().c_str(),
               model.m_Coefficients[term], model.m_StdErrors[term], model.m_TStats[term],
               model.m_PValues[term]);
  kestdb::PrintTermRest(stream, name);
}

}  // namespace

void CApproxModels::Dump(POD* pod, std::FILE* stream, int taskID, int resp) try {
  kestdb::RequireReportable(pod, stream);
  const auto [model, names] = Load(pod, taskID, resp);
  RequireFit(model, names);
  const std::string& response = kestdb::ElementAt(names.responses, resp);

  std::fprintf(
      stream, "                               APPROXIMATION MODEL                              \n");
  kestdb::PrintBar(stream, '=');
  std::fprintf(stream, "            Iteration number: %d\n", kestdb::ToInt(model.m_nIter));
  kestdb::PrintModelHead(stream, response, model.m_Coefficients.size());
  std::fprintf(stream,
               "          Term             Coefficient   Std. Error    t-Statistic     P-value\n");
  std::fprintf(
      stream, "------------------------  ------------  ------------  ------------  ------------\n");
  for (std::size_t term = 0; term < model.m_Coefficients.size(); ++term) {
    PrintTerm(stream, model, names, term);
  }
  kestdb::PrintEnd(stream);
}
LOG_AND_RETHROW
