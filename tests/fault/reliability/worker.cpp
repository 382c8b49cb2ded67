// A program of the library as a user could have written it. One run does one thing:
//
//   worker prepare STUDY                     makes the study
//   worker run UNIT STUDY                    does the unit, between FaultsBegin and FaultsEnd
//   worker snapshot UNIT STUDY FILE          writes what the study holds after the unit
//   worker judge UNIT STUDY BEFORE AFTER END judges what the unit left; END is done, reported,
//   killed,
//                                            or retried: reported, and done again without a check
//
// Its exit code is one of Endings.h.

#include <kestdb.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "tests/fault/reliability/Endings.h"
#include "tests/fault/reliability/Snapshot.h"
#include "tests/fault/reliability/Units.h"
#include "tests/fault/reliability/shim.h"

namespace fs = std::filesystem;

// Nobody else has the study, so that waiting is of no use.
void COSUtil::mySleep(unsigned) {}

// Tasks carry the time of their making; two runs are to make the same one.
extern "C" char* ctime(const std::time_t*) noexcept {
  static char text[] = "Mon Jan  2 15:04:05 2006\n";
  return text;
}

namespace {

int warnings = 0;

}  // namespace

void LWarn(const char* format, ...) {
  ++warnings;
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

namespace {

// ---- Doing a unit ----

long Descriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// Also what is left of a lock that was being taken away.
bool LockIsLeft(const std::string& base) {
  const std::string lock = fs::path(base + ".lck").filename();
  for (const auto& entry : fs::directory_iterator(fs::path(base).parent_path())) {
    if (entry.path().filename().string().starts_with(lock)) return true;
  }
  return false;
}

/// The worse of the two endings.
template <class Step>
int Try(int ending, Step step) {
  try {
    step();
    return ending;
  } catch (const CKestErr& failure) {
    std::cerr << "reported: " << failure.what() << '\n';
    return std::max<int>(ending, kReported);
  } catch (const NothingMade& failure) {
    std::cerr << "reported: " << failure.what() << '\n';
    return std::max<int>(ending, kReported);
  } catch (const std::exception& failure) {
    std::cerr << "a foreign exception: " << failure.what() << '\n';
    return kForeignException;
  }
}

/// A study whose closing failed is closed by the second try, without writing at last.
int Close(int ending) {
  for (int i = 0; i < 2 && IsOpen(); ++i) ending = Try(ending, [] { CloseDatabase(); });
  if (IsOpen()) {
    GetPOD()->Abandon();
    delete std::exchange(pPOD, nullptr);
  }
  return ending;
}

int Run(const Unit& unit, const std::string& base) {
  const long before = Descriptors();
  if (unit.needsOpen) OpenDatabase(base);
  if (FaultsBegin != nullptr) FaultsBegin();
  const int ending = Close(Try(kDone, [&] { unit.work(base); }));
  if (FaultsEnd != nullptr) FaultsEnd();
  if (ending == kForeignException) return ending;
  if (Descriptors() != before) return kDescriptorLeft;
  if (LockIsLeft(base)) return kLockLeft;
  return ending;
}

void Next(const Unit& unit, const std::string& base) {
  if (unit.next != nullptr) unit.next(base);
}

// ---- Judging what it left ----

class Judge {
 public:
  Judge(const Unit& unit, std::string base, const std::string& before, const std::string& after)
      : unit_(unit),
        base_(std::move(base)),
        before_(ReadSnapshot(before)),
        after_(ReadSnapshot(after)) {}

  int OfDone();
  int OfReported();
  int OfKilled();
  int OfRetried();

 private:
  bool IsClean();
  void Upkeep();
  int Open();
  int Compare(const Snapshot& found) const;
  int CompareObject(const std::string& name, const Snapshot& found) const;
  int Again(int verdict);
  Snapshot Untouched() const;

  const Unit& unit_;
  std::string base_;
  Snapshot before_;
  Snapshot after_;
  bool toldOfDamage_ = false;  ///< a rebuild did
  bool isSecond_ = false;      ///< the unit was done once more
};

/// The bytes of an object, empty when there is none.
std::string BytesOf(const Snapshot& snapshot, const std::string& name) {
  const auto place = snapshot.find(name);
  return place == snapshot.end() ? std::string() : place->second;
}

/// The objects that the unit doesn't touch.
Snapshot Judge::Untouched() const {
  Snapshot untouched;
  for (const auto& [name, bytes] : before_) {
    if (BytesOf(after_, name) == bytes) untouched[name] = bytes;
  }
  return untouched;
}

/// 0 for an object that the unit doesn't touch, and that is as it was.
int Judge::CompareObject(const std::string& name, const Snapshot& found) const {
  const std::string before = BytesOf(before_, name);
  const std::string after = BytesOf(after_, name);
  const std::string now = BytesOf(found, name);
  if (before == after && now == before) return 0;
  if (before == after) {
    std::cerr << "of an earlier unit: " << name << (now.empty() ? " is gone\n" : " differs\n");
    return kWrong;
  }
  if (now == after) return kNew;
  if (now == before) return kOld;
  if (now.empty()) return kLost;
  if (toldOfDamage_) return kTorn;
  std::cerr << name << " is neither as before nor as after\n";
  return kWrong;
}

int Judge::Compare(const Snapshot& found) const {
  Snapshot all = before_;
  all.insert(after_.begin(), after_.end());
  all.insert(found.begin(), found.end());
  if (isSecond_ && !unit_.isRepeated) all = Untouched();
  int verdict = 0;
  for (const auto& [name, bytes] : all) {
    const int one = CompareObject(name, found);
    const bool differ = (verdict == kOld || verdict == kNew) && (one == kOld || one == kNew);
    if (one == 0 || one == verdict) continue;
    verdict = differ ? kPart : std::max(verdict, one);
  }
  // Some units change the files alone.
  return verdict == 0 ? kNew : verdict;
}

/// What the study holds for somebody who just opens it.
int Judge::Open() {
  Snapshot found;
  int ending = Try(kDone, [&] {
    OpenDatabase(base_);
    found = TakeSnapshot();
  });
  ending = Close(ending);
  if (ending == kForeignException) return kWrong;
  return ending == kDone ? Compare(found) : kRefused;
}

/// All that the guide tells the user of a study that may be damaged to do.
void Judge::Upkeep() {
  const std::string data = base_ + ".ksb";
  CLock::m_strLockNameSta = base_ + ".lck";
  CLock::ForceUnlock();
  if (!fs::exists(data) && fs::exists(data + ".new")) fs::rename(data + ".new", data);
  if (!fs::exists(data)) return;
  int ending = Try(kDone, [&] { KForceUnlock(data); });
  if (fs::exists(base_ + ".kx")) ending = Try(ending, [&] { KForceUnlock(base_ + ".kx"); });
  ending = Try(ending, [&] { KFileCheck(data); });
  const int before = warnings;
  ending = Try(ending, [&] { KFileRebuild(data); });
  toldOfDamage_ = warnings > before;
  ending = Try(ending, [&] { KIndexRebuildCheck(base_, true); });
  if (ending == kForeignException) throw std::runtime_error("upkeep failed");
}

/// The study is of use again: the same unit succeeds on it.
int Judge::Again(int verdict) {
  if (verdict == kRefused || verdict == kWrong) return verdict;
  Try(kDone, [&] {
    if (unit_.needsOpen) OpenDatabase(base_);
  });
  const int ending = Close(Try(kDone, [&] { unit_.work(base_); }));
  if (ending != kDone) {
    std::cerr << "the unit can't be done again\n";
    return kWrong;
  }
  Next(unit_, base_);
  isSecond_ = true;
  const int again = Open();
  if (again == kNew) return verdict;
  std::cerr << "done again, the unit leads to another study, verdict " << again << '\n';
  return kWrong;
}

int Judge::OfDone() {
  Next(unit_, base_);
  return Open();
}

/// What the checks say that the guide tells the user of when in doubt.
bool Judge::IsClean() {
  const int ending = Try(kDone, [&] {
    KFileCheck(base_ + ".ksb");
    KIndexRebuildCheck(base_, false);
  });
  return ending == kDone;
}

int Judge::OfReported() {
  if (IsClean()) {
    const int verdict = Again(Open());
    if (verdict < kLost) return verdict + kWithoutUpkeep;
    return verdict;
  }
  return OfKilled();
}

/// Not a wrong one, when opening tells of damage.
int Judge::OfRetried() {
  const int verdict = Open();
  return verdict < kLost ? Again(verdict) : verdict;
}

int Judge::OfKilled() {
  Upkeep();
  return Again(Open());
}

int JudgeStudy(char** arguments) {
  Judge judge(UnitNamed(arguments[2]), arguments[3], arguments[4], arguments[5]);
  const std::string end = arguments[6];
  if (end == "done") return judge.OfDone();
  if (end == "reported") return judge.OfReported();
  if (end == "killed") return judge.OfKilled();
  if (end == "retried") return judge.OfRetried();
  throw std::invalid_argument("no end " + end);
}

int TakeSnapshotOf(const Unit& unit, const std::string& base, const std::string& path) {
  Next(unit, base);
  Snapshot snapshot;
  if (fs::exists(base + ".ksb")) {
    OpenDatabase(base);
    snapshot = TakeSnapshot();
    CloseDatabase();
  }
  WriteSnapshot(snapshot, path);
  return kDone;
}

int Command(int count, char** arguments) {
  const std::string command = count > 1 ? arguments[1] : "";
  if (command == "prepare" && count == 3) {
    PrepareStudy(arguments[2]);
    return kDone;
  }
  if (command == "run" && count == 4) return Run(UnitNamed(arguments[2]), arguments[3]);
  if (command == "snapshot" && count == 5) {
    return TakeSnapshotOf(UnitNamed(arguments[2]), arguments[3], arguments[4]);
  }
  if (command == "judge" && count == 7) return JudgeStudy(arguments);
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
