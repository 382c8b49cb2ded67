#include "tests/fault/processes/Scene.h"

#include <stdexcept>

#include "tests/fault/processes/Crew.h"
#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Inspection.h"
#include "tests/fault/reliability/Units.h"

namespace {

constexpr int kInspector = kMostProcesses;  // its number

}  // namespace

void Scene::Prepare() {
  tasks_ = 1;
  const Ending ending = Alone([this] {
    SetUpEnvironment(Folder(), kInspector, 0);
    PrepareStudy(Base(), kUsualPoints);
  });
  if (ending != Ending::Good) throw std::runtime_error("no study can be made");
}

void Scene::Inspect(int processes, bool afterCrash) {
  const Ending ending = Alone([&] {
    SetUpEnvironment(Folder(), kInspector, 0);
    Inspection inspection(Base(), tasks_, processes, *log_);
    afterCrash ? inspection.RunAfterCrash() : inspection.Run();
  });
  outcome_.Judge({ending});
  outcome_.Judge(*log_, processes);
}
