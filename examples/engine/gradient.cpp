#include "gradient.h"

#include <algorithm>
#include <cmath>
#include <nlopt.hpp>
#include <stdexcept>

namespace {

// Settings of CDGOControl.
constexpr long kQuadraticProgramming = 3;
constexpr long kCentralDifference = -1;

struct Bounds {
  std::vector<double> lower;
  std::vector<double> upper;
};

/// One search between bounds. A variable whose bounds are equal stays as it is.
class Search {
 public:
  Search(TaskModel& model, Run& run, const Bounds& bounds)
      : model_(model), run_(run), bounds_(bounds) {}

  /// The best design of the search.
  Design From(const std::vector<double>& start);
  StopCode Stop() const { return stop_; }

 private:
  nlopt::opt MakeOptimizer();
  StopCode Optimize(nlopt::opt& optimizer, std::vector<double> x);
  void MoveTo(const std::vector<double>& x);
  void TakeGradients();
  double StepOf(double value) const;

  static double Objective(const std::vector<double>& x, std::vector<double>& gradient, void* self);
  static void Constraints(unsigned rows, double* values, unsigned columns, const double* x,
                          double* gradient, void* self);

  TaskModel& model_;
  Run& run_;
  Bounds bounds_;
  Design current_;
  Design best_;
  bool hasGradients_ = false;
  std::vector<double> slopes_;                         ///< of the objective, by variable
  std::vector<std::vector<double>> constraintSlopes_;  ///< by variable, then by constraint
  StopCode stop_ = kNormalStop;
};

Design Search::From(const std::vector<double>& start) {
  current_ = best_ = model_.Evaluate(start);
  hasGradients_ = false;
  nlopt::opt optimizer = MakeOptimizer();
  stop_ = Optimize(optimizer, start);
  if (best_.number < 0) run_.Record({best_});
  return best_;
}

nlopt::opt Search::MakeOptimizer() {
  const CDGOControl& settings = model_.Task().m_DGO;
  if (settings.m_nIGRAD != kCentralDifference) {
    throw std::runtime_error("gradients are made by central differences");
  }
  nlopt::opt optimizer(
      settings.m_nMETHOD == kQuadraticProgramming ? nlopt::LD_SLSQP : nlopt::LD_MMA,
      static_cast<unsigned>(model_.Size()));
  optimizer.set_lower_bounds(bounds_.lower);
  optimizer.set_upper_bounds(bounds_.upper);
  optimizer.set_min_objective(Objective, this);
  optimizer.set_ftol_rel(settings.m_fDELOBJ);
  optimizer.set_ftol_abs(settings.m_fDABOBJ);
  optimizer.set_maxeval(static_cast<int>(settings.m_nITMAX));
  if (model_.Constraints() > 0) {
    optimizer.add_inequality_mconstraint(Constraints, this,
                                         std::vector<double>(model_.Constraints(), 0.0));
  }
  return optimizer;
}

StopCode Search::Optimize(nlopt::opt& optimizer, std::vector<double> x) {
  try {
    double objective = 0;
    switch (optimizer.optimize(x, objective)) {
      case nlopt::FTOL_REACHED:
        return kRelativeConvergence;
      case nlopt::MAXEVAL_REACHED:
        return kIterationLimit;
      default:
        return kNormalStop;
    }
  } catch (const nlopt::roundoff_limited&) {
    return kNoDirection;
  }
}

void Search::MoveTo(const std::vector<double>& x) {
  if (x == current_.Variables()) return;
  current_ = model_.Evaluate(x);
  hasGradients_ = false;
  if (model_.IsBetter(current_, best_)) best_ = current_;
}

/// Central differences, one-sided where a bound is in the way.
void Search::TakeGradients() {
  if (hasGradients_) return;
  run_.CountGradient();
  slopes_.assign(model_.Size(), 0.0);
  constraintSlopes_.assign(model_.Size(), std::vector<double>(model_.Constraints(), 0.0));
  for (std::size_t i = 0; i < model_.Size(); ++i) {
    std::vector<double> x = current_.Variables();
    const double step = StepOf(x[i]);
    const double above = std::min(x[i] + step, bounds_.upper[i]);
    const double below = std::max(x[i] - step, bounds_.lower[i]);
    if (above <= below) continue;
    x[i] = above;
    const Design high = model_.Evaluate(x);
    x[i] = below;
    const Design low = model_.Evaluate(x);
    slopes_[i] = (high.objective - low.objective) / (above - below);
    for (std::size_t k = 0; k < high.constraints.size(); ++k) {
      constraintSlopes_[i][k] = (high.constraints[k] - low.constraints[k]) / (above - below);
    }
  }
  hasGradients_ = true;
  if (current_.number >= 0) return;
  run_.Record({current_});
  if (best_.Variables() == current_.Variables()) best_.number = current_.number;
}

double Search::StepOf(double value) const {
  const CDGOControl& settings = model_.Task().m_DGO;
  return std::max<double>(settings.m_fFDCH * std::abs(value), settings.m_fFDCHM);
}

double Search::Objective(const std::vector<double>& x, std::vector<double>& gradient, void* self) {
  Search& search = *static_cast<Search*>(self);
  search.MoveTo(x);
  if (!gradient.empty()) {
    search.TakeGradients();
    gradient = search.slopes_;
  }
  return search.current_.objective;
}

void Search::Constraints(unsigned rows, double* values, unsigned columns, const double* x,
                         double* gradient, void* self) {
  Search& search = *static_cast<Search*>(self);
  search.MoveTo({x, x + columns});
  std::copy(search.current_.constraints.begin(), search.current_.constraints.end(), values);
  if (gradient == nullptr) return;
  search.TakeGradients();
  for (unsigned row = 0; row < rows; ++row) {
    for (unsigned column = 0; column < columns; ++column) {
      gradient[row * columns + column] = search.constraintSlopes_[column][row];
    }
  }
}

/// The values of a discrete variable on both sides of `value`.
std::vector<double> Neighbours(const std::vector<double>& choices, double value) {
  const auto above = std::lower_bound(choices.begin(), choices.end(), value);
  std::vector<double> neighbours;
  if (above != choices.begin()) neighbours.push_back(*(above - 1));
  if (above != choices.end()) neighbours.push_back(*above);
  return neighbours;
}

/// All bounds in which the discrete variables stand fixed at neighbours of the design's values.
std::vector<Bounds> Roundings(const TaskModel& model, const Design& design) {
  std::vector<Bounds> all = {{model.Lower(), model.Upper()}};
  for (std::size_t i = 0; i < model.Size(); ++i) {
    if (model.Choices(i).empty()) continue;
    std::vector<Bounds> next;
    for (const double value : Neighbours(model.Choices(i), design.Variables()[i])) {
      for (Bounds bounds : all) {
        bounds.lower[i] = bounds.upper[i] = value;
        next.push_back(bounds);
      }
    }
    all = next;
  }
  return all;
}

std::vector<double> Clamped(std::vector<double> x, const Bounds& bounds) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = std::clamp(x[i], bounds.lower[i], bounds.upper[i]);
  }
  return x;
}

}  // namespace

StopCode RunGradientSearch(TaskModel& model, Run& run) {
  const bool discrete = model.Task().m_DGO.m_nReserved != 0;
  Search relaxed(model, run, {model.Lower(), model.Upper()});
  const Design design = relaxed.From(model.Start());
  if (!discrete) return relaxed.Stop();

  StopCode stop = kNormalStop;
  for (const Bounds& bounds : Roundings(model, design)) {
    run.Say("Discrete variables rounded, solving again");
    Search rounded(model, run, bounds);
    rounded.From(Clamped(design.Variables(), bounds));
    stop = rounded.Stop();
  }
  return stop;
}
