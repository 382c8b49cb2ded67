#include "tests/fault/processes/Work.h"

#include <kestdb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>
#include <utility>

#include "tests/fault/processes/Measure.h"
#include "tests/fault/processes/Records.h"

namespace {

constexpr int kDeck = 100;

/// How often each kind comes in every hundred operations.
constexpr std::array<std::pair<Kind, int>, 10> kShares{{
    {Kind::Add, 20},
    {Kind::Update, 20},
    {Kind::LookUp, 16},
    {Kind::LookUpOther, 10},
    {Kind::Remove, 13},
    {Kind::Walk, 2},
    {Kind::Unit, 6},
    {Kind::Count, 8},
    {Kind::TakeID, 4},
    {Kind::MakeTask, 1},
}};

std::vector<Kind> NewDeck() {
  std::vector<Kind> deck;
  for (const auto& [kind, share] : kShares) deck.insert(deck.end(), std::size_t(share), kind);
  return deck;
}

}  // namespace

Worker::Worker(int process, int processes, const Plan& plan, Log& log)
    : process_(process),
      processes_(processes),
      plan_(plan),
      log_(log),
      ledger_(log.ledgers[process]),
      random_(static_cast<unsigned>(process + 1)) {}

void Worker::Run() {
  std::vector<Kind> deck;
  for (int i = 0; i < plan_.operations && !stopped_; ++i) {
    if (i % kDeck == 0) {
      deck = NewDeck();
      std::shuffle(deck.begin(), deck.end(), random_);
    }
    Operate(deck[static_cast<std::size_t>(i % kDeck)]);
    if (plan_.pause > 0.0) std::this_thread::sleep_for(std::chrono::duration<double>(plan_.pause));
  }
  NoteEndOfWork(ledger_);
}

void Worker::Operate(Kind kind) {
  const bool inTime = Measure(log_, process_, [&] { Do(kind); });
  End();
  if (!inTime) stopped_ = plan_.stopsAtTimeOut;
}

void Worker::Do(Kind kind) {
  switch (kind) {
    case Kind::Add:
      return Add();
    case Kind::Update:
      return Update();
    case Kind::LookUp:
      return LookUp();
    case Kind::LookUpOther:
      return LookUpOther();
    case Kind::Remove:
      return Remove();
    case Kind::Walk:
      return Walk();
    case Kind::Unit:
      return StoreUnit();
    case Kind::Count:
      return Count();
    case Kind::TakeID:
      return TakeID();
    case Kind::MakeTask:
      return MakeTask();
    case Kind::None:
      return;
  }
}

// ---- What is in flight ----

void Worker::Begin(Kind kind, int slot, int from, int to) {
  ledger_.inFlight.slot = slot;
  ledger_.inFlight.from = from;
  ledger_.inFlight.to = to;
  ledger_.inFlight.kind = kind;
}

void Worker::End() {
  ledger_.inFlight.kind = Kind::None;
}

void Worker::Require(bool good, const char* what) {
  if (!good) ledger_.Fault(what);
}

// ---- Own points ----

int Worker::Below(int limit) {
  return static_cast<int>(random_() % static_cast<unsigned>(limit));
}

int Worker::OwnTask() const {
  return kFirstOwnTask + process_;
}

/// -1 when there is none.
int Worker::SlotThat(bool isUsed) {
  const int first = Below(kSlots);
  for (int i = 0; i < kSlots; ++i) {
    const int slot = (first + i) % kSlots;
    if ((ledger_.versions[slot] != 0) == isUsed) return slot;
  }
  return -1;
}

void Worker::Add() {
  const int slot = SlotThat(false);
  if (slot < 0) return Update();
  const int version = ++ledger_.lastVersion;
  Begin(Kind::Add, slot, 0, version);
  PointOf(OwnTask(), slot, version).WriteObject(true);
  ledger_.versions[slot] = version;
}

void Worker::Update() {
  const int slot = SlotThat(true);
  if (slot < 0) return Add();
  const int version = ++ledger_.lastVersion;
  Begin(Kind::Update, slot, ledger_.versions[slot], version);
  PointOf(OwnTask(), slot, version).PutObject();
  ledger_.versions[slot] = version;
}

void Worker::LookUp() {
  const int slot = Below(kSlots);
  CDPoint point(GetPOD());
  point.m_nTaskID = OwnTask();
  point.m_nPointID = slot;
  const bool isThere = point.GetObject();
  Require(isThere == (ledger_.versions[slot] != 0), "looked up: stored or removed, and isn't");
  if (!isThere) return;
  Require(point.m_nPointFlag == ledger_.versions[slot], "looked up: a lost update");
  Require(IsWhole(point), "looked up: another object");
}

void Worker::Remove() {
  const int slot = SlotThat(true);
  if (slot < 0) return Add();
  CDPoint point(GetPOD());
  point.m_nTaskID = OwnTask();
  point.m_nPointID = slot;
  Begin(Kind::Remove, slot, ledger_.versions[slot], 0);
  Require(point.RemoveObject(), "removed: it wasn't there");
  ledger_.versions[slot] = 0;
}

// ---- Points of all ----

void Worker::LookUpOther() {
  CDPoint point(GetPOD());
  point.m_nTaskID = kFirstOwnTask + Below(processes_);
  point.m_nPointID = Below(kSlots);
  if (point.GetObject()) Require(IsWhole(point), "another one's: not whole");
}

void Worker::VisitOwn(const CDPoint& point, int& count) {
  if (point.m_nTaskID != OwnTask()) return;
  ++count;
  const long slot = point.m_nPointID;
  const bool isKnown = slot >= 0 && slot < kSlots && point.m_nPointFlag == ledger_.versions[slot];
  Require(isKnown && IsWhole(point), "met on the way: another object");
}

void Worker::Walk() {
  const CLock lock(GetPOD(), 0);
  CDPoint walker(GetPOD());
  int count = 0;
  for (vbINT32 at = walker.FirstObject(0); at > 0; at = walker.NextObject(at)) {
    CDPoint point(GetPOD());
    point.ReadObject(at);
    VisitOwn(point, count);
  }
  const auto known = std::count_if(std::begin(ledger_.versions), std::end(ledger_.versions),
                                   [](int version) { return version != 0; });
  Require(count == known, "met on the way: too many or too few");
}

// ---- Units of several objects ----

void Worker::StoreUnit() {
  const int number = ledger_.units;
  Begin(Kind::Unit, 0, number, number + 1);
  {
    const CLock lock(GetPOD(), 0);
    for (int i = 0; i < kUnitPoints; ++i) {
      PointOf(kFirstUnitTask + process_, number * kUnitPoints + i, number + 1).WriteObject(true);
    }
    MessageOf(MessageID(process_, number)).WriteObject(true);
  }
  ledger_.units = number + 1;
}

void Worker::Count() {
  Begin(Kind::Count, 0, ledger_.counts, ledger_.counts + 1);
  {
    const CLock lock(GetPOD(), 0);
    Counter counter;
    Require(counter.Of(process_) == ledger_.counts && counter.IsWhole(), "a lost count");
    counter.Add(process_);
    counter.Store();
  }
  ++ledger_.counts;
}

/// Storing finds out whether another process has the ID, too.
void Worker::TakeID() {
  Begin(Kind::TakeID, 0, ledger_.idCount, ledger_.idCount + 1);
  int id = 0;
  {
    const CLock lock(GetPOD(), 0);
    id = CDBCtrl(GetPOD()).GetAuxID(true);
    AuxiliaryOf(id).WriteObject(true);
  }
  ledger_.ids[ledger_.idCount] = id;
  ++ledger_.idCount;
}

/// The making itself swallows what fails; that there is no lock is to be known.
void Worker::MakeTask() {
  Begin(Kind::MakeTask, 0, ledger_.taskCount, ledger_.taskCount + 1);
  int id = 0;
  {
    const CLock lock(GetPOD(), 0);
    CTask task(GetPOD());
    task.DefineTask(true, true);
    id = static_cast<int>(long{task.m_nID});
    Require(id > 0, "no task was made");
  }
  ledger_.tasks[ledger_.taskCount] = id;
  ++ledger_.taskCount;
}
