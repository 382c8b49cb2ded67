#include "tests/fault/processes/Inspection.h"

#include <kestdb.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <vector>

#include "tests/fault/processes/Environment.h"
#include "tests/fault/processes/Records.h"
#include "tests/support/StudyCheck.h"

namespace fs = std::filesystem;

namespace {

int IntOf(const vbINT32& number) {
  return static_cast<int>(long{number});
}

template <class Class>
int CountOf() {
  return Class(GetPOD()).CountObjects();
}

template <class Class>
bool LoadByID(Class& object, int id) {
  object.m_nID = id;
  return object.GetObject();
}

/// The lock, or what is left of one that was being taken away.
int LocksOf(const std::string& base) {
  const std::string lock = fs::path(base + ".lck").filename();
  int locks = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(base).parent_path())) {
    if (entry.path().filename().string().starts_with(lock)) ++locks;
  }
  return locks;
}

}  // namespace

Inspection::Inspection(std::string base, int tasks, int processes, Log& log)
    : base_(std::move(base)),
      tasks_(tasks),
      processes_(processes),
      log_(log),
      findings_(log.findings) {}

template <class Step>
bool Inspection::Try(Step step) {
  try {
    step();
    return true;
  } catch (const std::exception& failure) {
    findings_.Wrong(failure.what(), 0);
    return false;
  }
}

void Inspection::Run() {
  if (LocksOf(base_) != 0) return findings_.Wrong("a lock is left", LocksOf(base_));
  Try([this] {
    OpenDatabase(base_);
    Look();
    CloseDatabase();
    RequireSoundFiles();
  });
}

void Inspection::RunAfterCrash() {
  findings_.lockStood = fs::exists(base_ + ".lck");
  Try([this] {
    Upkeep();
    OpenDatabase(base_);
    Look();
    CloseDatabase();
    RequireSoundFiles();
  });
}

// ---- Files ----

/// What a rebuild warned of stays as it is.
void Inspection::RequireSoundFiles() {
  const int faults = LoggedFaults();
  KFileCheck(base_ + ".ksb");
  KIndexRebuildCheck(base_, false);
  if (findings_.told > 0) return;
  if (LoggedFaults() != faults) findings_.Wrong("the checks tell of faults", LoggedFaults());
  const std::string found = FaultsOfStudy(base_);
  if (!found.empty()) findings_.Wrong(found.c_str(), static_cast<long>(found.size()));
}

void Inspection::Upkeep() {
  const std::string data = base_ + ".ksb";
  CLock::m_strLockNameSta = base_ + ".lck";
  CLock::ForceUnlock();
  if (fs::exists(base_ + ".lck")) findings_.Wrong("the lock is still there", 0);
  try {
    KFileCheck(data);
  } catch (const CKestErr&) {
    // A header that was not written back is what the rebuild is for.
  }
  const int faults = LoggedFaults();
  KFileRebuild(data);
  findings_.told = LoggedFaults() - faults;
  KIndexRebuildCheck(base_, true);
}

// ---- What lies in the study ----

void Inspection::Look() {
  const CLock lock(GetPOD(), 0);
  LookForPoints();
  ExpectPoints();
  const int unitMessages = CompareMessages();
  CompareCounter();
  CompareIDs();
  CompareTasks(unitMessages);
  CompareSingletons();
}

bool Inspection::IsInFlight(int process, Kind kind) const {
  return log_.ledgers[process].inFlight.kind == kind;
}

int Inspection::InFlightOf(Kind kind) const {
  int count = 0;
  for (int i = 0; i < processes_; ++i) count += IsInFlight(i, kind) ? 1 : 0;
  return count;
}

void Inspection::LookForPoints() {
  CDPoint walker(GetPOD());
  for (vbINT32 at = walker.FirstObject(0); at > 0; at = walker.NextObject(at)) {
    CDPoint point(GetPOD());
    try {
      point.ReadObject(at);
    } catch (const CKestErr&) {
      if (findings_.told == 0) throw;
      continue;
    }
    if (point.m_nTaskID < kFirstOwnTask || point.m_nTaskID == kCounterTask) continue;
    ++met_[{IntOf(point.m_nTaskID), IntOf(point.m_nPointID)}];
    if (!IsWhole(point)) findings_.Wrong("a point is not whole", point.m_nPointID);
  }
}

void Inspection::ExpectPoints() {
  for (int i = 0; i < processes_; ++i) {
    ExpectOwn(i);
    ExpectUnits(i);
    JudgeInFlight(i);
  }
  for (const auto& [name, count] : met_) {
    findings_.Wrong("a point that nobody knows, of task", name.first);
  }
}

void Inspection::ExpectOwn(int process) {
  const Ledger& ledger = log_.ledgers[process];
  const bool isChanging = IsInFlight(process, Kind::Add) || IsInFlight(process, Kind::Update) ||
                          IsInFlight(process, Kind::Remove);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (isChanging && slot == ledger.inFlight.slot) continue;
    ComparePoint({kFirstOwnTask + process, slot}, ledger.versions[slot]);
  }
}

void Inspection::ExpectUnits(int process) {
  const Ledger& ledger = log_.ledgers[process];
  const int units = IsInFlight(process, Kind::Unit) ? ledger.inFlight.from : ledger.units;
  for (int i = 0; i < units * kUnitPoints; ++i) {
    ComparePoint({kFirstUnitTask + process, i}, i / kUnitPoints + 1);
  }
}

/// By its key. 0 for one that isn't there.
int Inspection::VersionOf(const PointName& name) {
  CDPoint point(GetPOD());
  point.m_nTaskID = name.first;
  point.m_nPointID = name.second;
  return point.GetObject() ? IntOf(point.m_nPointFlag) : 0;
}

void Inspection::ComparePoint(const PointName& name, int version) {
  ++findings_.objects;
  const auto place = met_.find(name);
  const int count = place == met_.end() ? 0 : place->second;
  if (place != met_.end()) met_.erase(place);
  if (count > 1) findings_.Wrong("a point is there twice", name.second);
  if ((count > 0) != (version > 0)) {
    findings_.Wrong(version > 0 ? "a point is lost" : "a removed point is there", name.second);
  }
  const int found = VersionOf(name);
  if (found != version) findings_.Wrong("a point by its key has version", found);
}

// ---- In flight when the process died ----

void Inspection::JudgeInFlight(int process) {
  switch (log_.ledgers[process].inFlight.kind) {
    case Kind::Add:
    case Kind::Update:
    case Kind::Remove:
      return JudgePoint(process);
    case Kind::Unit:
      return JudgeUnit(process);
    default:
      return;
  }
}

void Inspection::JudgePoint(int process) {
  const InFlight& point = log_.ledgers[process].inFlight;
  const PointName name{kFirstOwnTask + process, point.slot};
  met_.erase(name);
  int version = 0;
  try {
    version = VersionOf(name);
  } catch (const CKestErr&) {
    if (findings_.told == 0) throw;
  }
  if (version == point.to) {
    ++findings_.fates.fresh;
  } else if (version == point.from) {
    ++findings_.fates.old;
  } else if (version == 0) {
    ++findings_.fates.lost;
  } else {
    findings_.Wrong("in flight, now with version", version);
  }
}

void Inspection::JudgeUnit(int process) {
  const int unit = log_.ledgers[process].inFlight.from;
  int there = 0;
  for (int i = unit * kUnitPoints; i < (unit + 1) * kUnitPoints; ++i) {
    const PointName name{kFirstUnitTask + process, i};
    met_.erase(name);
    if (VersionOf(name) == unit + 1) ++there;
  }
  CMessage message(GetPOD());
  if (LoadByID(message, MessageID(process, unit))) ++there;
  Fates& fates = findings_.fates;
  ++(there == 0 ? fates.old : there == kUnitPoints + 1 ? fates.fresh : fates.part);
}

// ---- Other objects ----

/// Those of units; each task has one, too. Their number.
int Inspection::CompareMessages() {
  int expected = 0;
  for (int i = 0; i < processes_; ++i) {
    const Ledger& ledger = log_.ledgers[i];
    const int units = IsInFlight(i, Kind::Unit) ? ledger.inFlight.from : ledger.units;
    for (int unit = 0; unit < units; ++unit) {
      CMessage message(GetPOD());
      const bool isThere = LoadByID(message, MessageID(i, unit)) && IsWhole(message);
      if (!isThere) findings_.Wrong("a message is lost", unit);
      ++findings_.objects;
    }
    expected += units;
  }
  return expected;
}

/// Each process's part is what it counted, unless its last one was in flight.
void Inspection::CompareCounter() {
  ++findings_.objects;
  const int inFlight = InFlightOf(Kind::Count);
  int counts = 0;
  for (int i = 0; i < processes_; ++i) counts += log_.ledgers[i].counts;
  Counter counter;
  if (!counter.IsStored()) {
    if (inFlight > 0) ++findings_.fates.lost;
    if (inFlight == 0 && counts > 0) findings_.Wrong("the counter is lost", counts);
    return;
  }
  if (!counter.IsWhole()) findings_.Wrong("the counter's parts are not the whole", counts);
  for (int i = 0; i < processes_; ++i) {
    const Ledger& ledger = log_.ledgers[i];
    const int found = counter.Of(i);
    if (!IsInFlight(i, Kind::Count)) {
      if (found != ledger.counts) findings_.Wrong("counts, lost or doubled", found);
    } else if (found == ledger.inFlight.from || found == ledger.inFlight.to) {
      ++(found == ledger.inFlight.from ? findings_.fates.old : findings_.fates.fresh);
    } else {
      findings_.Wrong("counts, in flight", found);
    }
  }
}

void Inspection::CompareIDs() {
  std::set<int> ids;
  for (int i = 0; i < processes_; ++i) {
    const Ledger& ledger = log_.ledgers[i];
    const int count = IsInFlight(i, Kind::TakeID) ? ledger.inFlight.from : ledger.idCount;
    for (int place = 0; place < count; ++place) {
      const int id = ledger.ids[place];
      if (!ids.insert(id).second) findings_.Wrong("an ID was handed out twice", id);
      CAuxiliary auxiliary(GetPOD());
      const bool isThere = LoadByID(auxiliary, id) && IsWhole(auxiliary);
      if (!isThere) findings_.Wrong("a definition is lost", id);
      ++findings_.objects;
    }
  }
  const int inFlight = InFlightOf(Kind::TakeID);
  const int more = CountOf<CAuxiliary>() - static_cast<int>(ids.size());
  if (more < 0 || more > inFlight) findings_.Wrong("definitions too many", more);
  findings_.fates.fresh += more;
  findings_.fates.old += inFlight - more;
  const int last = ids.empty() ? 0 : *ids.rbegin();
  const int next = CDBCtrl(GetPOD()).GetAuxID(false);
  const bool isRight = inFlight > 0 ? next > last : next == static_cast<int>(ids.size()) + 1;
  if (!isRight) findings_.Wrong("the next ID", next);
}

void Inspection::CompareTasksOf(int process, std::set<int>& known) {
  const Ledger& ledger = log_.ledgers[process];
  const int count = IsInFlight(process, Kind::MakeTask) ? ledger.inFlight.from : ledger.taskCount;
  for (int place = 0; place < count; ++place) {
    const int id = ledger.tasks[place];
    if (!known.insert(id).second) findings_.Wrong("a task was made twice", id);
    CTask task(GetPOD());
    CResult result(GetPOD());
    if (!LoadByID(task, id) || !LoadByID(result, id)) findings_.Wrong("a task is lost", id);
    findings_.objects += 2;
  }
}

/// Each task has one object of each of these classes.
void Inspection::CompareTasks(int unitMessages) {
  std::set<int> known;
  for (int id = 1; id <= tasks_; ++id) known.insert(id);
  for (int i = 0; i < processes_; ++i) CompareTasksOf(i, known);
  const std::vector<int> counts{CountOf<CTask>(),  CountOf<CResult>(), CountOf<CDVar>(),
                                CountOf<CDResp>(), CountOf<CDCons>(),  CountOf<CDObj>()};
  const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
  const int ended = static_cast<int>(known.size());
  const int inFlight = InFlightOf(Kind::MakeTask);
  if (*least < ended || *most > ended + inFlight) findings_.Wrong("objects of tasks", *most);
  const int more = CountOf<CMessage>() - unitMessages - ended;
  if (more < 0 || more > inFlight + InFlightOf(Kind::Unit)) findings_.Wrong("messages", more);
  findings_.fates.fresh += *least - ended;
  findings_.fates.part += *most - *least;
  findings_.fates.old += inFlight - (*most - ended);
}

void Inspection::CompareSingletons() {
  findings_.objects += 3;
  for (const int count : {CountOf<CDBCtrl>(), CountOf<CDesignControl>(), CountOf<CGPoint>()}) {
    if (count != 1) findings_.Wrong("objects of which there is one", count);
  }
}
