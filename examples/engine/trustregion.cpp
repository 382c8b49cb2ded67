#include "trustregion.h"

#include <algorithm>
#include <cmath>
#include <nlopt.hpp>
#include <stdexcept>

#include "examples/support/surface.h"

namespace {

constexpr long kFullQuadratic = 3;

// How far the model was right, as the share of the predicted gain, and what follows for the region.
constexpr double kPoor = 0.25;
constexpr double kGood = 0.75;
constexpr double kShrink = 0.4;
constexpr double kGrow = 1.6;

using Terms = std::vector<std::vector<int>>;

struct Region {
  /// The point at a place whose coordinates go from -1 to 1.
  std::vector<double> At(const std::vector<double>& place) const {
    std::vector<double> point(centre);
    for (std::size_t i = 0; i < point.size(); ++i) point[i] += place[i] * halfWidth[i];
    return point;
  }

  std::vector<double> centre;
  std::vector<double> halfWidth;
};

/// All places with coordinates -1, 0 and 1.
std::vector<std::vector<double>> Grid(std::size_t variables) {
  std::vector<std::vector<double>> places = {{}};
  for (std::size_t i = 0; i < variables; ++i) {
    std::vector<std::vector<double>> next;
    for (const auto& place : places) {
      for (const double coordinate : {-1.0, 0.0, 1.0}) {
        next.push_back(place);
        next.back().push_back(coordinate);
      }
    }
    places = next;
  }
  return places;
}

/// A fitted polynomial.
struct Surface {
  double At(const std::vector<double>& place) const {
    const std::vector<double> values = TermsAt(terms, place);
    double sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) sum += values[i] * fit.coefficients[i];
    return sum;
  }

  const Terms& terms;
  LeastSquares fit;
};

double SurfaceAt(const std::vector<double>& place, std::vector<double>&, void* surface) {
  return static_cast<const Surface*>(surface)->At(place);
}

/// The place in the region where the surface is least.
std::vector<double> MinimumOf(Surface& surface, const std::vector<std::vector<double>>& starts) {
  nlopt::opt optimizer(nlopt::LN_BOBYQA, static_cast<unsigned>(starts[0].size()));
  optimizer.set_lower_bounds(-1.0);
  optimizer.set_upper_bounds(1.0);
  optimizer.set_min_objective(SurfaceAt, &surface);
  optimizer.set_xtol_abs(1e-9);
  optimizer.set_maxeval(1000);
  std::vector<double> best = starts[0];
  // A quadratic that isn't convex has several minima between bounds.
  for (std::vector<double> place : starts) {
    try {
      double value = 0;
      optimizer.optimize(place, value);
    } catch (const nlopt::roundoff_limited&) {
      // The place is as near as it can come.
    }
    if (surface.At(place) < surface.At(best)) best = place;
  }
  return best;
}

class TrustRegion {
 public:
  TrustRegion(TaskModel& model, Run& run)
      : model_(model),
        run_(run),
        settings_(model.Task().m_RSA),
        terms_(QuadraticTerms(model.Size())),
        grid_(Grid(model.Size())) {}

  StopCode Go();

 private:
  void CheckTask() const;
  void Begin();
  void Iterate();
  void KeepInside();
  Surface Fit(const std::vector<Design>& designs) const;
  void Record(Design& candidate, std::vector<Design>& designs, const LeastSquares& fit);
  void Learn(const std::vector<double>& place, double share);
  bool IsSmall() const;
  bool HasPoints() const;

  TaskModel& model_;
  Run& run_;
  const CRSAControl& settings_;
  Terms terms_;
  std::vector<std::vector<double>> grid_;
  Region region_;
};

StopCode TrustRegion::Go() {
  CheckTask();
  Begin();
  while (HasPoints()) {
    Iterate();
    if (IsSmall()) return kAbsoluteConvergence;
  }
  return kIterationLimit;
}

void TrustRegion::CheckTask() const {
  if (settings_.m_nOrder != kFullQuadratic || model_.Constraints() > 0 ||
      model_.Task().m_uNumIndResp != 1UL || model_.Size() < 2) {
    throw std::runtime_error(
        "only full quadratic models of a single response to several variables are fitted");
  }
}

void TrustRegion::Begin() {
  region_.centre = model_.Start();
  for (std::size_t i = 0; i < model_.Size(); ++i) {
    region_.halfWidth.push_back(settings_.m_fMoveRelQuad * (model_.Upper()[i] - model_.Lower()[i]));
  }
}

void TrustRegion::Iterate() {
  KeepInside();
  std::vector<Design> designs;
  for (const auto& place : grid_) designs.push_back(model_.Evaluate(region_.At(place)));
  Surface surface = Fit(designs);
  const std::vector<double> place = MinimumOf(surface, grid_);
  Design candidate = model_.Evaluate(region_.At(place));
  Record(candidate, designs, surface.fit);

  // The grid's middle is the centre of the region.
  const std::size_t middle = grid_.size() / 2;
  const double predicted = surface.At(grid_[middle]) - surface.At(place);
  const double gain = designs[middle].objective - candidate.objective;
  Learn(place, predicted > 0.0 ? gain / predicted : 0.0);
}

/// Moves the region back between the bounds.
void TrustRegion::KeepInside() {
  for (std::size_t i = 0; i < model_.Size(); ++i) {
    region_.centre[i] = std::clamp(region_.centre[i], model_.Lower()[i] + region_.halfWidth[i],
                                   model_.Upper()[i] - region_.halfWidth[i]);
  }
}

Surface TrustRegion::Fit(const std::vector<Design>& designs) const {
  std::vector<std::vector<double>> rows;
  std::vector<double> responses;
  for (std::size_t i = 0; i < designs.size(); ++i) {
    rows.push_back(TermsAt(terms_, grid_[i]));
    responses.push_back(designs[i].Of(vbIndependentResp)[0]);
  }
  return {terms_, FitLeastSquares(rows, responses)};
}

void TrustRegion::Record(Design& candidate, std::vector<Design>& designs, const LeastSquares& fit) {
  // The models belong to the iteration: one lock around both.
  const CLock lock(GetPOD(), 0);
  Step step = {candidate};
  for (Design& design : designs) step.others.push_back(&design);
  const int iteration = run_.Record(step);
  std::vector<double> frame = region_.centre;
  frame.insert(frame.end(), region_.halfWidth.begin(), region_.halfWidth.end());
  StoreModel(model_.ID(), iteration, 0, terms_, fit, frame);
  StoreResiduals(model_.ID(), 0, fit);
  StoreFinalModel(model_.ID(), terms_, fit);
}

/// `share` is that of the predicted gain which came true.
void TrustRegion::Learn(const std::vector<double>& place, double share) {
  double reach = 0.0;
  for (const double coordinate : place) reach = std::max(reach, std::abs(coordinate));
  const bool atEdge = reach > 0.99;
  double factor = 1.0;
  if (share < kPoor || !atEdge) factor = kShrink;
  if (share > kGood && atEdge) factor = kGrow;
  region_.centre = run_.Best().Variables();
  for (std::size_t i = 0; i < model_.Size(); ++i) {
    const double most = settings_.m_fMoveRelQuad * (model_.Upper()[i] - model_.Lower()[i]);
    region_.halfWidth[i] = std::min(factor * region_.halfWidth[i], most);
  }
}

bool TrustRegion::IsSmall() const {
  return *std::max_element(region_.halfWidth.begin(), region_.halfWidth.end()) <
         settings_.m_fMoveAbsQuad;
}

/// Whether another iteration keeps within the points that the user grants.
bool TrustRegion::HasPoints() const {
  return model_.Analyses() + static_cast<long>(grid_.size()) < settings_.m_nMaxPoints;
}

}  // namespace

StopCode RunTrustRegion(TaskModel& model, Run& run) {
  return TrustRegion(model, run).Go();
}
