// A program of the library as a user could have written it. One run does one thing:
//
//   worker prepare STUDY [POINTS]            makes the study
//   worker run UNIT STUDY                    does the unit, disturbed
//   worker snapshot UNIT STUDY FILE          writes what the study holds after the unit
//   worker judge UNIT STUDY BEFORE AFTER END judges what the unit left
//
// END is done, reported, killed, or retried: reported, and done again without a check. The exit
// code is one of Endings.h.

#include <kestdb.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "tests/fault/reliability/Judge.h"
#include "tests/fault/reliability/Run.h"

namespace fs = std::filesystem;

// Nobody else has the study, so that waiting is of no use.
void COSUtil::mySleep(unsigned) {}

// Tasks carry the time of their making; two runs are to make the same one.
extern "C" char* ctime(const std::time_t*) noexcept {
  static char text[] = "Mon Jan  2 15:04:05 2006\n";
  return text;
}

namespace {

Judgement JudgeStudy(char** arguments) {
  Judge judge(UnitNamed(arguments[2]), arguments[3], arguments[4], arguments[5]);
  const std::string end = arguments[6];
  if (end == "done") return judge.OfDone();
  if (end == "reported") return judge.OfReported();
  if (end == "killed") return judge.OfKilled();
  if (end == "retried") return judge.OfRetried();
  throw std::invalid_argument("no end " + end);
}

int TakeSnapshotOf(const Unit& unit, const std::string& base, const std::string& path) {
  if (unit.next != nullptr) unit.next(base);
  Snapshot snapshot;
  if (fs::exists(base + ".ksb")) {
    OpenDatabase(base);
    snapshot = TakeSnapshot();
    CloseDatabase();
  }
  WriteSnapshot(snapshot, path);
  return kDone;
}

int Prepare(const std::string& base, int points) {
  PrepareStudy(base, points);
  return kDone;
}

int Command(int count, char** arguments) {
  const std::string command = count > 1 ? arguments[1] : "";
  if (command == "prepare" && count == 3) return Prepare(arguments[2], kUsualPoints);
  if (command == "prepare" && count == 4) return Prepare(arguments[2], std::stoi(arguments[3]));
  if (command == "run" && count == 4) return RunUnit(UnitNamed(arguments[2]), arguments[3]);
  if (command == "snapshot" && count == 5) {
    return TakeSnapshotOf(UnitNamed(arguments[2]), arguments[3], arguments[4]);
  }
  if (command == "judge" && count == 7) return CodeOf(JudgeStudy(arguments));
  std::cerr << "wrong use: see worker.cpp\n";
  return kWrongUse;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    return Command(count, arguments);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return kWrongUse;
  }
}
