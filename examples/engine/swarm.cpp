#include "swarm.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

struct Particle {
  std::vector<double> position;
  std::vector<double> velocity;
  Design current;
  Design best;
};

class Swarm {
 public:
  Swarm(TaskModel& model, Run& run)
      : model_(model),
        run_(run),
        settings_(model.Task().m_NGO),
        random_(static_cast<std::uint32_t>(settings_.m_nSeed)) {}

  StopCode Fly();

 private:
  void Scatter();
  void Move();
  void Steer(Particle& particle, const Design& leader);
  void RecordMove();
  bool HasConverged(int move);
  const Design& LeaderOf(std::size_t particle) const;
  std::vector<double> Admitted(const std::vector<double>& position) const;
  double Random(double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random_);
  }

  TaskModel& model_;
  Run& run_;
  const CNGOControl& settings_;
  std::mt19937 random_;
  std::vector<Particle> particles_;
  double lastObjective_ = 0;
  long movesWithoutGain_ = 0;
};

StopCode Swarm::Fly() {
  Scatter();
  RecordMove();
  for (int move = 1; move <= settings_.m_nMaxIters; ++move) {
    Move();
    RecordMove();
    if (HasConverged(move)) return kRelativeConvergence;
  }
  return kIterationLimit;
}

/// All over the design space, at rest.
void Swarm::Scatter() {
  particles_.resize(static_cast<std::size_t>(long{settings_.m_nPopulation}));
  for (Particle& particle : particles_) {
    for (std::size_t i = 0; i < model_.Size(); ++i) {
      particle.position.push_back(Random(model_.Lower()[i], model_.Upper()[i]));
    }
    particle.velocity.assign(model_.Size(), 0.0);
    particle.current = particle.best = model_.Evaluate(Admitted(particle.position));
  }
}

void Swarm::Move() {
  for (std::size_t i = 0; i < particles_.size(); ++i) {
    Particle& particle = particles_[i];
    Steer(particle, LeaderOf(i));
    particle.current = model_.Evaluate(Admitted(particle.position));
    if (model_.IsBetter(particle.current, particle.best)) particle.best = particle.current;
  }
}

void Swarm::Steer(Particle& particle, const Design& leader) {
  for (std::size_t i = 0; i < model_.Size(); ++i) {
    double& x = particle.position[i];
    double& v = particle.velocity[i];
    v = settings_.m_fInertia * v +
        settings_.m_fTrust1 * Random(0.0, 1.0) * (particle.best.Variables()[i] - x) +
        settings_.m_fTrust2 * Random(0.0, 1.0) * (leader.Variables()[i] - x);
    const double target = x + v;
    x = std::clamp(target, model_.Lower()[i], model_.Upper()[i]);
    if (x != target) v = 0.0;  // it came to a bound
  }
}

void Swarm::RecordMove() {
  const auto better = [this](const Particle& a, const Particle& b) {
    return model_.IsBetter(a.current, b.current);
  };
  Design& leader = std::min_element(particles_.begin(), particles_.end(), better)->current;
  run_.Record({leader});
}

/// No gain worth the name in so many moves.
bool Swarm::HasConverged(int move) {
  const double objective = run_.Best().objective;
  const double gain = std::abs(objective - lastObjective_);
  if (gain > settings_.m_fHardRel * std::abs(objective)) {
    lastObjective_ = objective;
    movesWithoutGain_ = 0;
  } else {
    ++movesWithoutGain_;
  }
  return move >= settings_.m_nMinIters && movesWithoutGain_ >= settings_.m_nConvIters;
}

const Design& Swarm::LeaderOf(std::size_t particle) const {
  const std::size_t count = particles_.size();
  const Design* leader = &particles_[particle].best;
  for (const std::size_t neighbour : {(particle + 1) % count, (particle + count - 1) % count}) {
    if (model_.IsBetter(particles_[neighbour].best, *leader)) leader = &particles_[neighbour].best;
  }
  return *leader;
}

std::vector<double> Swarm::Admitted(const std::vector<double>& position) const {
  std::vector<double> x = position;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const std::vector<double>& choices = model_.Choices(i);
    if (choices.empty()) continue;
    const double wanted = x[i];
    x[i] = *std::min_element(choices.begin(), choices.end(), [=](double a, double b) {
      return std::abs(a - wanted) < std::abs(b - wanted);
    });
  }
  return x;
}

}  // namespace

StopCode RunSwarm(TaskModel& model, Run& run) {
  return Swarm(model, run).Fly();
}
