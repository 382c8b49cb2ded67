#include "tests/fault/reliability/Judge.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tests/fault/reliability/Attempt.h"

namespace fs = std::filesystem;

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

/// The bytes of an object, empty when there is none.
std::string BytesOf(const Snapshot& snapshot, const std::string& name) {
  const auto place = snapshot.find(name);
  return place == snapshot.end() ? std::string() : place->second;
}

/// The only object of its class; empty where there is none.
std::string CountersIn(const Snapshot& snapshot) {
  const std::string prefix = CDBCtrl::m_strCLASS_NAME + ":";
  const auto place = snapshot.lower_bound(prefix);
  return place != snapshot.end() && place->first.starts_with(prefix) ? place->first : "";
}

/// How objects that are judged one by one are judged together.
Verdict Together(Verdict all, Verdict one) {
  const bool differ = (all == kOld && one == kNew) || (all == kNew && one == kOld);
  return differ ? kPart : std::max(all, one);
}

}  // namespace

Judge::Judge(const Unit& unit, std::string base, const std::string& before,
             const std::string& after)
    : unit_(unit),
      base_(std::move(base)),
      before_(ReadSnapshot(before)),
      after_(ReadSnapshot(after)) {}

// ---- Comparing ----

/// The objects that the unit doesn't touch.
Snapshot Judge::Untouched() const {
  Snapshot untouched;
  for (const auto& [name, bytes] : before_) {
    if (BytesOf(after_, name) == bytes) untouched[name] = bytes;
  }
  return untouched;
}

Verdict Judge::CompareObject(const std::string& name, const Snapshot& found) const {
  const std::string before = BytesOf(before_, name);
  const std::string after = BytesOf(after_, name);
  const std::string now = BytesOf(found, name);
  if (before == after && now == before) return kUntouched;
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

/// Opening the study has made new ones where they were gone.
Counters Judge::CompareCounters(const Snapshot& found) const {
  if (!unit_.storesCounters) return kCountersUntouched;
  const std::string name = CountersIn(before_);
  const std::string now = BytesOf(found, name);
  const bool whole = now == BytesOf(before_, name) || now == BytesOf(after_, name);
  return whole ? kCountersWhole : kCountersLost;
}

Judgement Judge::Compare(const Snapshot& found) const {
  Snapshot all = before_;
  all.insert(after_.begin(), after_.end());
  all.insert(found.begin(), found.end());
  if (isSecond_ && !unit_.isRepeated) all = Untouched();
  Judgement judgement;
  judgement.counters = CompareCounters(found);
  if (unit_.storesCounters) all.erase(CountersIn(before_));
  for (const auto& [name, bytes] : all) {
    judgement.verdict = Together(judgement.verdict, CompareObject(name, found));
  }
  // Some units change the files alone.
  if (judgement.verdict == kUntouched) judgement.verdict = kNew;
  return judgement;
}

/// What the study holds for somebody who just opens it.
Judgement Judge::Open() {
  Snapshot found;
  int ending = Try(kDone, [&] {
    OpenDatabase(base_);
    found = TakeSnapshot();
  });
  ending = Close(ending);
  if (ending == kDone) return Compare(found);
  return {ending == kReported ? kRefused : kWrong};
}

// ---- What the user does ----

/// What the checks say that the guide tells the user of when in doubt.
bool Judge::IsClean() {
  const int ending = Try(kDone, [&] {
    KFileCheck(base_ + ".ksb");
    KIndexRebuildCheck(base_, false);
  });
  return ending == kDone;
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
  if (ending > kReported) throw std::runtime_error("upkeep failed");
}

/// The study is of use again: the same unit succeeds on it.
Judgement Judge::Again(Judgement judgement) {
  if (judgement.verdict >= kRefused) return judgement;
  const int open = Try(kDone, [&] {
    if (unit_.needsOpen) OpenDatabase(base_);
  });
  if (Close(Try(open, [&] { unit_.work(base_); })) != kDone) {
    std::cerr << "the unit can't be done again\n";
    judgement.verdict = kWrong;
    return judgement;
  }
  if (unit_.next != nullptr) unit_.next(base_);
  isSecond_ = true;
  const Verdict again = Open().verdict;
  if (again == kNew) return judgement;
  std::cerr << "done again, the unit leads to another study, verdict " << again << '\n';
  judgement.verdict = kWrong;
  return judgement;
}

// ---- Judging ----

Judgement Judge::OfDone() {
  if (unit_.next != nullptr) unit_.next(base_);
  return Open();
}

Judgement Judge::OfReported() {
  if (!IsClean()) return OfKilled();
  return Again(Open());
}

/// Not a wrong one, when opening tells of damage.
Judgement Judge::OfRetried() {
  const Judgement judgement = Open();
  return judgement.verdict < kLost ? Again(judgement) : judgement;
}

Judgement Judge::OfKilled() {
  Upkeep();
  Judgement judgement = Again(Open());
  judgement.neededUpkeep = true;
  return judgement;
}
