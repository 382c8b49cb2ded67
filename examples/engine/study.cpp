#include "study.h"

#include <kestdb.h>

#include <cmath>
#include <exception>
#include <filesystem>
#include <stdexcept>

#include "definition.h"
#include "engine.h"

OpenStudy::OpenStudy(const std::string& path, const std::function<void()>& define) {
  const bool isNew = !std::filesystem::exists(path + ".ksb");
  OpenDatabase(path);
  // Other processes see a new study when it is whole.
  const CLock lock(GetPOD(), 0);
  if (isNew) define();
  task_ = MakeTask();
}

OpenStudy::~OpenStudy() {
  try {
    CloseDatabase();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "the study can't be closed: %s\n", failure.what());
  }
}

Finding MinimumOf(const std::string& name, const TaskModel& model, const Run& run,
                  double published) {
  const Design& best = run.Best();
  if (!model.IsFeasible(best) || !best.admitted) {
    throw std::runtime_error(name + ": no feasible design found");
  }
  const double found = best.objective;
  return {name, found, published, (found - published) / std::abs(published)};
}

Finding FigureOf(const std::string& name, double found, double published) {
  return {name, found, published, std::abs(found - published) / std::abs(published)};
}
