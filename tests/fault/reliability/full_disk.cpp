// Does units of work of the library on a small file system that is really full, but for some
// blocks: none, one, and so on until the unit finds enough. Then room is made, and the study is
// judged. Studies of several sizes meet the end at different places.
//
//   full_disk [--second WORKER] WORKER MOST
//
// MOST is the most sizes of the study; 0 stands for all. A second worker, which the sanitizers
// watch, has every second case. Where no file system can be mounted, that is said, and all is well.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/fault/reliability/SmallDisk.h"
#include "tests/fault/reliability/Stage.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr int kFirstPoints = 24;
constexpr int kSizes = 16;

constexpr std::array<const char*, 9> kUnits{"create",        "add",          "same-size-update",
                                            "larger-update", "remove",       "take-id",
                                            "make-task",     "file-rebuild", "index-rebuild"};

class FullDisk {
 public:
  FullDisk(std::vector<std::string> workers, const std::string& folder)
      : workers_(std::move(workers)), folder_(folder), disk_(folder + "/stage/case") {}

  void Run(int sizes);
  bool IsGood() const { return all_.IsGood(); }

 private:
  Figures RunUnit(const std::string& unit, int sizes);
  void RunSize(const std::string& unit, int points, Figures& figures);
  Outcome RunCase(const std::string& unit, long freeBlocks, Stage& stage,
                  const Undisturbed& undisturbed);
  void Tell(const std::string& text, const Outcome& outcome, const Stage& stage);

  std::vector<std::string> workers_;
  std::string folder_;
  SmallDisk disk_;
  Figures all_;
  std::vector<std::string> wrong_;
};

void FullDisk::Run(int sizes) {
  PrintHead();
  for (const char* unit : kUnits) {
    const Figures figures = RunUnit(unit, sizes);
    Print(unit, "full disk", figures);
    all_.Add(figures);
  }
  Print("all", "full disk", all_);
  std::printf("\nCDBCtrl was lost in %ld of %ld cases.\n", all_.lostCounters,
              all_.wholeCounters + all_.lostCounters);
  for (const std::string& text : wrong_) std::printf("  %s\n", text.c_str());
  Summarize("units of work on a file system that is full", all_);
  if (all_.reported == 0) throw std::runtime_error("the disk was never full");
}

Figures FullDisk::RunUnit(const std::string& unit, int sizes) {
  Figures figures;
  for (int i = 0; i < sizes; ++i) {
    RunSize(unit, kFirstPoints + i * kSizes / sizes, figures);
  }
  return figures;
}

void FullDisk::RunSize(const std::string& unit, int points, Figures& figures) {
  const std::string study = folder_ + "/prepared" + std::to_string(points) + "/s";
  PrepareStudy(workers_.front(), study, points, folder_ + "/log");
  Stage stage(folder_ + "/stage", study);
  const Undisturbed undisturbed = stage.Rehearse(workers_.front(), unit, SanitizerSettings(false));
  for (long freeBlocks = 0;; ++freeBlocks) {
    const Outcome outcome = RunCase(unit, freeBlocks, stage, undisturbed);
    figures.Count(outcome);
    const std::string name = unit + ", " + std::to_string(points) + " points, " +
                             std::to_string(freeBlocks) + " blocks free";
    if (!outcome.IsGood()) Tell(name, outcome, stage);
    if (outcome.end == Outcome::End::Unchanged) return;
    if (freeBlocks == SmallDisk::kBlocks) throw std::runtime_error("never enough room: " + name);
  }
}

Outcome FullDisk::RunCase(const std::string& unit, long freeBlocks, Stage& stage,
                          const Undisturbed& undisturbed) {
  const std::string& worker = workers_[static_cast<std::size_t>(freeBlocks) % workers_.size()];
  stage.Provide(unit);
  if (!disk_.FillUpTo(freeBlocks)) throw std::runtime_error("the disk is too small");
  const Ended ended = stage.Run(worker, unit, SanitizerSettings(false));
  disk_.MakeRoom();
  return stage.Judge(workers_.front(), unit, undisturbed, ended);
}

void FullDisk::Tell(const std::string& text, const Outcome& outcome, const Stage& stage) {
  wrong_.push_back(text + ": " + outcome.what);
  for (const std::string& line : stage.LastWords()) wrong_.back() += "\n    " + line;
}

int Play(std::vector<std::string> arguments) {
  std::vector<std::string> second;
  if (arguments.size() > 2 && arguments.front() == "--second") {
    second.push_back(arguments[1]);
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  if (arguments.size() != 2) throw std::invalid_argument("full_disk [--second WORKER] WORKER MOST");
  std::vector<std::string> workers{arguments[0]};
  workers.insert(workers.end(), second.begin(), second.end());
  const int most = std::stoi(arguments[1]);
  const TempFolder folder;
  FullDisk cases(workers, folder.Path());
  cases.Run(most == 0 ? kSizes : std::clamp(most, 1, kSizes));
  return cases.IsGood() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return Play({arguments + 1, arguments + count});
  } catch (const SmallDisk::Refused& refused) {
    std::printf("No small file system can be mounted here: %s\n", refused.what());
    return EXIT_SUCCESS;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return EXIT_FAILURE;
  }
}
