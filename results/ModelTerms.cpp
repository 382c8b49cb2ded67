#include "results/ModelTerms.h"

#include "store/report.h"
#include "store/walk.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/TableReport.h"
#include "task/Task.h"

namespace {

std::string Power(const std::string& variable, int exponent) {
  return exponent == 1 ? variable : variable + "**" + std::to_string(exponent);
}

}  // namespace

kestdb::ModelNames kestdb::LoadModelNames(POD* pod, int taskID) {
  RequireByID<CTask, CGetObject>(pod, taskID);
  const auto vars = RequireByID<CDVar, CGetObject>(pod, taskID);
  const auto resps = RequireByID<CDResp, CGetObject>(pod, taskID);
  return {vars.m_vstrIndName, resps.m_vstrIndName};
}

std::string kestdb::TermName(const std::valarray<int>& exponents,
                             const std::vector<std::string>& variables) {
  std::string name;
  bool isConstant = true;
  for (std::size_t i = 0; i < exponents.size(); ++i) {
    if (exponents[i] == 0) continue;
    if (!isConstant) name += " * ";
    isConstant = false;
    name += Power(ElementAt(variables, static_cast<long>(i)), exponents[i]);
  }
  return isConstant ? "Constant" : name;
}

void kestdb::PrintModelHead(std::FILE* stream, const std::string& response, std::size_t terms) {
  const std::vector<std::string> name = NamePieces(response, 50);
  std::fprintf(stream, "        Independent response: %-50.50s\n", name.front().c_str());
  for (std::size_t i = 1; i < name.size(); ++i) {
    std::fprintf(stream, "                              %-50.50s\n", name[i].c_str());
  }
  std::fprintf(stream, "             Number of terms: %d\n", static_cast<int>(terms));
  PrintBar(stream, '-');
}

void kestdb::PrintTermRest(std::FILE* stream, const std::vector<std::string>& name) {
  for (std::size_t i = 1; i < name.size(); ++i) {
    std::fprintf(stream, "%-23.23s\n", name[i].c_str());
  }
}
