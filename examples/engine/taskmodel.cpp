#include "taskmodel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "stopwatch.h"

namespace {

/// What m_vnDiscreteRef says of an integer variable.
constexpr long kInteger = -1;

template <class Record>
void Load(Record& record, int id) {
  record.m_nID = id;
  if (!record.GetObject())
    throw std::runtime_error("the task lacks its " + Record::m_strCLASS_NAME);
}

std::vector<double> ListOf(const std::valarray<vbFLOAT64>& values) {
  return {std::begin(values), std::end(values)};
}

/// The values that a row of arguments names.
std::vector<double> Arguments(const Design& design, const std::vector<vbINT32>& positions,
                              const std::vector<vbINT32>& kinds) {
  std::vector<double> values;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    values.push_back(design.Of(kinds.at(i)).at(static_cast<std::size_t>(long{positions[i]})));
  }
  return values;
}

/// Formulas are of numbers, not of whole arrays.
void RequireScalars(const std::vector<std::vector<vbINT32>>& lengths) {
  for (const auto& row : lengths) {
    if (std::all_of(row.begin(), row.end(), [](long length) { return length == 1; })) continue;
    throw std::runtime_error("a function takes a whole array");
  }
}

double ValueOf(const Design& design, long kind, long position) {
  return design.Of(kind).at(static_cast<std::size_t>(position));
}

/// What is no number is as bad as can be.
double OrInfinity(double value) {
  return std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
}

std::vector<double> Integers(double lower, double upper) {
  std::vector<double> values;
  for (double value = std::ceil(lower); value <= upper; value += 1.0) values.push_back(value);
  return values;
}

std::vector<double> Within(const std::vector<vbFLOAT64>& set, double lower, double upper) {
  std::vector<double> values;
  std::copy_if(set.begin(), set.end(), std::back_inserter(values),
               [=](double value) { return value >= lower && value <= upper; });
  return values;
}

}  // namespace

std::vector<double>& Design::Of(long kind) {
  return values.at(static_cast<std::size_t>(kind - vbIndependentVar));
}

const std::vector<double>& Design::Of(long kind) const {
  return values.at(static_cast<std::size_t>(kind - vbIndependentVar));
}

TaskTables::TaskTables(int id)
    : task(GetPOD()),
      variables(GetPOD()),
      responses(GetPOD()),
      constraints(GetPOD()),
      objectives(GetPOD()),
      links(GetPOD()),
      functions(GetPOD()),
      sets(GetPOD()),
      start(GetPOD()) {
  // One lock around all: the tables are those of one moment.
  const CLock lock(GetPOD(), 0);
  Load(task, id);
  Load(variables, id);
  Load(responses, id);
  Load(constraints, id);
  if (task.m_nType != 2) Load(objectives, id);
  Load(links, id);
  Load(functions, id);
  Load(sets, id);
  start.m_nTaskID = id;
  if (!start.GetObject()) throw std::runtime_error("the task lacks its starting point");
}

TaskModel::TaskModel(int id, Analysis program)
    : id_(id),
      program_(std::move(program)),
      tables_(id),
      lower_(ListOf(tables_.variables.m_vfIndLower)),
      upper_(ListOf(tables_.variables.m_vfIndUpper)),
      start_(std::begin(tables_.start.m_IDVar), std::end(tables_.start.m_IDVar)),
      constants_(std::begin(tables_.start.m_CDVar), std::end(tables_.start.m_CDVar)) {
  RequireScalars(tables_.variables.m_mnSynLen);
  RequireScalars(tables_.responses.m_mnSynLen);
  for (std::size_t i = 0; i < tables_.functions.m_vnAuxID.size(); ++i) {
    formulas_.try_emplace(tables_.functions.m_vnAuxID[i], tables_.functions.m_vstrArgs.at(i),
                          tables_.functions.m_vstrEquation.at(i));
  }
  for (std::size_t i = 0; i < tables_.links.m_vnAuxID.size(); ++i) {
    tables_.links.GetCoef(static_cast<int>(i), factors_[tables_.links.m_vnAuxID[i]]);
  }
  for (std::size_t i = 0; i < Size(); ++i) choices_.push_back(ChoicesOf(i));
}

std::vector<double> TaskModel::ChoicesOf(std::size_t variable) const {
  const long set = tables_.variables.m_vnDiscreteRef.at(variable);
  if (set == 0) return {};
  if (set == kInteger) return Integers(lower_[variable], upper_[variable]);
  const auto& ids = tables_.sets.m_vnAuxID;
  const auto found = std::find(ids.begin(), ids.end(), set);
  if (found == ids.end()) throw std::runtime_error("the task lacks a set");
  return Within(tables_.sets.m_mdValues.at(static_cast<std::size_t>(found - ids.begin())),
                lower_[variable], upper_[variable]);
}

Design TaskModel::Evaluate(const std::vector<double>& variables) {
  Design design;
  design.Of(vbIndependentVar) = variables;
  design.Of(vbConstantVar) = constants_;
  Derive(tables_.variables, vbLinkedVar, vbSyntheticVar, design);
  Analyse(design);
  Derive(tables_.responses, vbLinkedResp, vbSyntheticResp, design);
  Judge(design);
  return design;
}

bool TaskModel::IsBetter(const Design& design, const Design& than) const {
  if (IsFeasible(design) != IsFeasible(than)) return IsFeasible(design);
  if (IsFeasible(design)) return design.objective < than.objective;
  return design.worst < than.worst;
}

double TaskModel::Tolerance() const {
  const CTask& task = Task();
  if (task.m_nType == 1) return task.m_RSA.m_fCTMIN;
  if (task.m_nType == 3) return task.m_NGO.m_fCTMIN;
  return task.m_DGO.m_fCTMIN;
}

/// Works out the linked and synthetic entries of a table. Functions may use the links.
template <class Table>
void TaskModel::Derive(const Table& table, long linked, long synthetic, Design& design) {
  for (std::size_t i = 0; i < table.m_vnLinkRef.size(); ++i) {
    const auto arguments = Arguments(design, table.m_mnLinkSubj.at(i), table.m_mnLinkType.at(i));
    design.Of(linked).push_back(Link(table.m_vnLinkRef[i], arguments));
  }
  for (std::size_t i = 0; i < table.m_vnSynRef.size(); ++i) {
    const auto arguments = Arguments(design, table.m_mnSynSubj.at(i), table.m_mnSynType.at(i));
    design.Of(synthetic).push_back(formulas_.at(table.m_vnSynRef[i])(arguments));
  }
}

/// Hands the variables over as a program gets them, and takes its responses.
void TaskModel::Analyse(Design& design) {
  const Stopwatch stopwatch(analysisSeconds_);
  const CDVar& vars = tables_.variables;
  std::vector<double> transferred;
  for (std::size_t i = 0; i < vars.m_vnSeq.size(); ++i) {
    transferred.push_back(ValueOf(design, vars.m_vnType.at(i), vars.m_vnSeq[i]));
  }
  design.Of(vbIndependentResp) = program_(transferred);
  if (design.Of(vbIndependentResp).size() != tables_.responses.m_vnIndIDs.size()) {
    throw std::runtime_error("the analysis gave another number of responses than the task has");
  }
  ++analyses_;
}

void TaskModel::Judge(Design& design) const {
  const CDObj& terms = tables_.objectives;
  for (std::size_t i = 0; i < terms.m_vnSubj.size(); ++i) {
    const double value = ValueOf(design, terms.m_vnSubjType.at(i), terms.m_vnSubj[i]);
    design.objectives.push_back(OrInfinity(terms.Eval(static_cast<int>(i), value)));
    design.objective += design.objectives.back();
  }
  const CDCons& limits = tables_.constraints;
  for (std::size_t i = 0; i < limits.m_vnSubj.size(); ++i) {
    const double value = ValueOf(design, limits.m_vnSubjType.at(i), limits.m_vnSubj[i]);
    const double over =
        static_cast<double>(limits.m_vnMult.at(i)) * (value - limits.m_vfBound.at(i));
    design.constraints.push_back(OrInfinity(over / limits.m_vfScale.at(i)));
    design.worst = std::max(design.worst, design.constraints.back());
  }
  for (std::size_t i = 0; i < Size(); ++i) {
    const auto& choices = choices_[i];
    if (choices.empty()) continue;
    if (!std::binary_search(choices.begin(), choices.end(), design.Variables()[i])) {
      design.admitted = false;
    }
  }
}

double TaskModel::Link(long auxiliary, const std::vector<double>& arguments) const {
  const std::vector<double>& factors = factors_.at(auxiliary);
  if (factors.size() != arguments.size() + 1) throw std::runtime_error("a link lacks arguments");
  double sum = factors[0];
  for (std::size_t i = 0; i < arguments.size(); ++i) sum += factors[i + 1] * arguments[i];
  return sum;
}
