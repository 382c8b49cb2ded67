#include "nsga2.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <utility>

namespace {

struct Individual {
  Design design;
  std::size_t rank = 0;  ///< of its front, from 0
  double distance = 0;   ///< to its neighbours in the front
};

using Population = std::vector<Individual>;
using Front = std::vector<std::size_t>;  // positions in a population

/// Whether a has no term worse than b, and one better; a feasible design dominates others.
bool Dominates(const TaskModel& model, const Design& a, const Design& b) {
  if (!model.IsFeasible(a) || !model.IsFeasible(b)) return model.IsBetter(a, b);
  bool better = false;
  for (std::size_t i = 0; i < a.objectives.size(); ++i) {
    if (a.objectives[i] > b.objectives[i]) return false;
    better = better || a.objectives[i] < b.objectives[i];
  }
  return better;
}

/// Shares the population out to fronts, each of which only those before it dominate.
std::vector<Front> Sort(const TaskModel& model, Population& population) {
  std::vector<Front> dominated(population.size());
  std::vector<std::size_t> above(population.size());
  for (std::size_t i = 0; i < population.size(); ++i) {
    for (std::size_t k = 0; k < population.size(); ++k) {
      if (!Dominates(model, population[i].design, population[k].design)) continue;
      dominated[i].push_back(k);
      ++above[k];
    }
  }
  std::vector<Front> fronts(1);
  for (std::size_t i = 0; i < population.size(); ++i) {
    if (above[i] == 0) fronts[0].push_back(i);
  }
  for (std::size_t rank = 0; !fronts[rank].empty(); ++rank) {
    Front next;
    for (const std::size_t i : fronts[rank]) {
      population[i].rank = rank;
      for (const std::size_t k : dominated[i]) {
        if (--above[k] == 0) next.push_back(k);
      }
    }
    fronts.push_back(next);
  }
  fronts.pop_back();
  return fronts;
}

/// Sums up over the terms how far apart the neighbours of each member are.
void Spread(Population& population, Front front) {
  for (const std::size_t i : front) population[i].distance = 0.0;
  const std::size_t terms = population[front[0]].design.objectives.size();
  for (std::size_t term = 0; term < terms; ++term) {
    const auto value = [&](std::size_t i) { return population[i].design.objectives[term]; };
    std::sort(front.begin(), front.end(),
              [&](std::size_t a, std::size_t b) { return value(a) < value(b); });
    const double range = value(front.back()) - value(front.front());
    population[front.front()].distance = std::numeric_limits<double>::infinity();
    population[front.back()].distance = std::numeric_limits<double>::infinity();
    if (range <= 0.0) continue;
    for (std::size_t i = 1; i + 1 < front.size(); ++i) {
      population[front[i]].distance += (value(front[i + 1]) - value(front[i - 1])) / range;
    }
  }
}

bool IsFitter(const Individual& a, const Individual& b) {
  return a.rank != b.rank ? a.rank < b.rank : a.distance > b.distance;
}

class Evolution {
 public:
  Evolution(TaskModel& model, Run& run)
      : model_(model),
        run_(run),
        settings_(model.Task().m_NGO),
        random_(static_cast<std::uint32_t>(settings_.m_nSeed)) {}

  std::vector<Design> Go();

 private:
  std::size_t Size() const { return static_cast<std::size_t>(long{settings_.m_nPopulation}); }
  void Found();
  void Breed();
  void Select();
  void RecordFront();
  const std::vector<double>& Parent();
  void Cross(std::vector<double>& a, std::vector<double>& b);
  void Mutate(std::vector<double>& x);
  double Random(double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random_);
  }
  bool Happens(double probability) { return Random(0.0, 1.0) < probability; }

  TaskModel& model_;
  Run& run_;
  const CNGOControl& settings_;
  std::mt19937 random_;
  Population population_;
};

std::vector<Design> Evolution::Go() {
  Found();
  RecordFront();
  for (int generation = 1; generation <= settings_.m_nMaxIters; ++generation) {
    Breed();
    Select();
    RecordFront();
  }
  std::vector<Design> front;
  for (const Individual& individual : population_) {
    if (individual.rank == 0) front.push_back(individual.design);
  }
  return front;
}

/// All over the design space.
void Evolution::Found() {
  for (std::size_t member = 0; member < Size(); ++member) {
    std::vector<double> x(model_.Size());
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = Random(model_.Lower()[i], model_.Upper()[i]);
    population_.push_back({model_.Evaluate(x)});
  }
  for (const Front& front : Sort(model_, population_)) Spread(population_, front);
}

/// As many children as there are parents.
void Evolution::Breed() {
  Population children;
  while (children.size() < Size()) {
    std::vector<double> a = Parent();
    std::vector<double> b = Parent();
    if (Happens(settings_.m_fNSGACrossProb)) Cross(a, b);
    Mutate(a);
    Mutate(b);
    children.push_back({model_.Evaluate(a)});
    children.push_back({model_.Evaluate(b)});
  }
  population_.insert(population_.end(), children.begin(), children.end());
}

/// Keeps the fittest, front by front, of the last one those with the most room.
void Evolution::Select() {
  for (const Front& front : Sort(model_, population_)) Spread(population_, front);
  std::stable_sort(population_.begin(), population_.end(), IsFitter);
  population_.resize(Size());
}

void Evolution::RecordFront() {
  std::vector<Design*> front;
  for (Individual& individual : population_) {
    if (individual.rank == 0) front.push_back(&individual.design);
  }
  run_.Record({.current = *front[0], .others = {}, .front = front});
}

/// The fitter of two drawn at random.
const std::vector<double>& Evolution::Parent() {
  std::uniform_int_distribution<std::size_t> draw(0, Size() - 1);
  const Individual& a = population_[draw(random_)];
  const Individual& b = population_[draw(random_)];
  return (IsFitter(b, a) ? b : a).design.Variables();
}

/// Simulated binary cross-over: the children lie about the parents as those of a binary one would.
void Evolution::Cross(std::vector<double>& a, std::vector<double>& b) {
  const double power = 1.0 / (static_cast<double>(settings_.m_nCrossIndex) + 1.0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Happens(0.5)) continue;
    const double u = Random(0.0, 1.0);
    const double spread = u <= 0.5 ? std::pow(2.0 * u, power) : std::pow(0.5 / (1.0 - u), power);
    const double middle = (a[i] + b[i]) / 2.0;
    const double half = spread * (b[i] - a[i]) / 2.0;
    a[i] = std::clamp(middle - half, model_.Lower()[i], model_.Upper()[i]);
    b[i] = std::clamp(middle + half, model_.Lower()[i], model_.Upper()[i]);
    if (Happens(0.5)) std::swap(a[i], b[i]);
  }
}

/// Polynomial mutation.
void Evolution::Mutate(std::vector<double>& x) {
  const double power = 1.0 / (static_cast<double>(settings_.m_nMutIndex) + 1.0);
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (!Happens(settings_.m_fNSGAMutProb)) continue;
    const double u = Random(0.0, 1.0);
    const double shift =
        u < 0.5 ? std::pow(2.0 * u, power) - 1.0 : 1.0 - std::pow(2.0 * (1.0 - u), power);
    const double range = model_.Upper()[i] - model_.Lower()[i];
    x[i] = std::clamp(x[i] + shift * range, model_.Lower()[i], model_.Upper()[i]);
  }
}

}  // namespace

std::vector<Design> RunNSGA2(TaskModel& model, Run& run) {
  return Evolution(model, run).Go();
}
