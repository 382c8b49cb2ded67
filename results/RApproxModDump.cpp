#include <stdexcept>
#include <string>
#include <valarray>
#include <vector>

#include "definition/DefinitionReport.h"
#include "maintenance/Lock.h"
#include "results/Matrix.h"
#include "results/ModelTerms.h"
#include "results/RApproxMod.h"
#include "store/KestErr.h"
#include "store/podcheck.h"
#include "store/report.h"
#include "task/TableReport.h"

// The report of the final models. All that can be wrong with them is found before a line is
// printed.

namespace {

template <class T>
CMatrix<T> MatrixOf(const vbINT32& rows, const vbINT32& cols, const std::valarray<T>& data) try {
  return CMatrix<T>(static_cast<unsigned long>(long{rows}), static_cast<unsigned long>(long{cols}),
                    data, false);
} catch (const std::out_of_range&) {
  Throw<CInvalidArgument>();
}

struct Models {
  explicit Models(const CRApproxMod& record)
      : exponents(MatrixOf(record.m_nRowMod, record.m_nColMod, record.m_Model)),
        coefficients(MatrixOf(record.m_nRowCoeff, record.m_nColCoeff, record.m_Coeff)) {}

  unsigned long Terms() const { return coefficients.Rows(); }
  unsigned long Responses() const { return coefficients.Columns(); }
  std::valarray<int> ExponentsOf(unsigned long term) const {
    return exponents.Data()[std::slice(term, exponents.Rows(), exponents.Columns())];
  }

  CMatrix<int> exponents;        ///< A row for each variable, a column for each term
  CMatrix<double> coefficients;  ///< A row for each term, a column for each response
};

void RequireFit(const Models& models, const kestdb::ModelNames& names) {
  if (models.exponents.Columns() != models.Terms()) Throw<CInvalidArgument>();
  if (models.exponents.Rows() > names.variables.size()) Throw<CInvalidArgument>();
  if (models.Responses() > names.responses.size()) Throw<CInvalidArgument>();
}

void PrintTerm(std::FILE* stream, const Models& models, const kestdb::ModelNames& names,
               unsigned long term, unsigned long response) {
  const std::vector<std::string> name = kestdb::NamePieces(
      kestdb::TermName(models.ExponentsOf(term), names.variables), kestdb::kTermColumns);
  std::fprintf(stream, "%23.23s  %#12.5g\n", name.front().c_str(),
               models.coefficients.At(term, response));
  kestdb::PrintTermRest(stream, name);
}

void PrintModel(std::FILE* stream, const Models& models, const kestdb::ModelNames& names,
                unsigned long response) {
  std::fprintf(
      stream,
      "                          FINAL APPROXIMATION MODEL                              \n");
  kestdb::PrintBar(stream, '=');
  kestdb::PrintModelHead(stream, names.responses[response], models.Terms());
  std::fprintf(stream, "          Term             Coefficient\n");
  std::fprintf(stream, "------------------------  ------------\n");
  for (unsigned long term = 0; term < models.Terms(); ++term) {
    PrintTerm(stream, models, names, term, response);
  }
  kestdb::PrintEnd(stream);
}

}  // namespace

void CRApproxMod::Dump(POD* pod, std::FILE* stream, int taskID) try {
  kestdb::RequireReportable(pod, stream);
  const CLock lock(pod, 0);
  CRApproxMod record(pod);
  record.m_nTaskID = taskID;
  if (!record.GetObject()) Throw<CGetObject>();
  const kestdb::ModelNames names = kestdb::LoadModelNames(pod, taskID);
  const Models models(record);
  RequireFit(models, names);
  for (unsigned long response = 0; response < models.Responses(); ++response) {
    PrintModel(stream, models, names, response);
  }
}
LOG_AND_RETHROW
