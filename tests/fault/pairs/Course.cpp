#include "tests/fault/pairs/Course.h"
#include "tests/fault/LogStream.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <sstream>
#include <utility>

#include "environment/Logging.h"
#include "index/KSBKey.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "tests/fault/FileMap.h"
#include "tests/fault/QuickEnvironment.h"
#include "tests/support/Bytes.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr int kOrder = 4;
constexpr int kTrees = 25;
constexpr int kMostSteps = 5000;

long AddressOf(const ListedObject& object) {
  constexpr std::size_t blockHeader = 28;
  return static_cast<long>(object.block + blockHeader);
}

void SetText(char* text, const std::string& value) {
  if (text[0] == '\0') value.copy(text, Findings::kText - 1);
}

/// A checksum that disagrees means something in a live block alone.
bool TellsOfErrors(const LogStream& log) {
  std::istringstream lines(log.Text());
  bool live = true;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("Status ")) live = line.ends_with("N");
    if (line.starts_with("ERROR:") && live) return true;
  }
  return false;
}

}  // namespace

/// A place to store objects for the sake of their bytes.
class Course::Scratch {
 public:
  Scratch() {
    KSBKey key;
    pod_.Open(folder_ / "scratch.ksb", folder_ / "scratch.kx", key, kOrder, vbReadWrite, 1, 0,
              kTrees);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { pod_.Abandon(); }

  /// The version word and the fields.
  std::string RecordOf(vbPersistent& object) {
    object.Connect(&pod_);
    object.PutObject();
    return StoredRecord(object);
  }

 private:
  TempFolder folder_;
  POD pod_{folder_ / "scratch.ksb"};
};

Course::Course(std::string base, const Known& known, Findings& findings)
    : base_(std::move(base)), known_(known), findings_(findings) {}

Course::~Course() = default;

/// Whether the step came to its end. What it tells goes to `text`.
template <class Step>
bool Course::Try(Step step, char* text) {
  const LogStream log;
  const int before = LoggedFaults();
  bool ended = false;
  try {
    step();
    ended = true;
  } catch (const CKestErr& failure) {
    findings_.told = true;
    SetText(text, failure.what());
  }
  if (LoggedFaults() != before || TellsOfErrors(log)) {
    findings_.told = true;
    SetText(text, "told in the log");
  }
  return ended;
}

void Course::Lose(const std::string& what) {
  SetText(findings_.lost, what);
}

std::string Words(const Tally& tally) {
  std::string words;
  for (const auto& [count, word] : {std::pair{tally.right, "right"},
                                    {tally.absent, "absent"},
                                    {tally.refused, "refused"},
                                    {tally.wrong, "WRONG"},
                                    {tally.back, "BACK"}}) {
    if (count > 0) words += (words.empty() ? "" : ", ") + std::to_string(count) + ' ' + word;
  }
  return words.empty() ? "-" : words;
}

std::ostream& operator<<(std::ostream& stream, const Tally& tally) {
  return stream << Words(tally);
}

// ---- Reading ----

const ListedObject* Course::Find(long classID, const std::string& key) const {
  for (const ListedObject& object : known_.objects) {
    if (object.classID == classID && KeyOf(*NewObject(nullptr, object)) == key) return &object;
  }
  return nullptr;
}

bool Course::IsChanged(const ListedObject& listed) const {
  return AddressOf(listed) == known_.changed;
}

/// Compares all values: by the bytes that they are stored as.
bool Course::IsAsListed(vbPersistent& object, const ListedObject& listed) {
  if (IsChanged(listed)) return true;
  POD* const own = object.Database();
  if (scratch_ == nullptr) scratch_ = std::make_unique<Scratch>();
  const bool same = scratch_->RecordOf(object) == listed.record;
  object.Connect(own);
  return same;
}

Course::Got Course::Ask(const ListedObject& listed) {
  const auto object = NewObject(GetPOD(), listed);
  auto got = Got::Refused;
  char text[Findings::kText] = {};
  Try(
      [&] {
        const bool found = object->GetObject();
        got = !found ? Got::Absent : IsAsListed(*object, listed) ? Got::Right : Got::Wrong;
      },
      text);
  if (got == Got::Absent) Lose(NameOf(listed) + " is not found");
  if (got == Got::Refused) Lose(NameOf(listed) + ": " + text);
  if (got == Got::Wrong) Lose(NameOf(listed) + " has other values");
  return got;
}

void Course::ReadByKey(Tally& tally) {
  for (const ListedObject& object : known_.objects) {
    const Got got = Ask(object);
    if (IsChanged(object)) continue;
    if (got == Got::Right) ++tally.right;
    if (got == Got::Absent) ++tally.absent;
    if (got == Got::Refused) ++tally.refused;
    if (got == Got::Wrong) ++tally.wrong;
  }
  for (const ListedObject& other : known_.others) {
    char text[Findings::kText] = {};
    Try(
        [&] {
          if (!NewObject(GetPOD(), other)->GetObject()) return;
          ++tally.back;
          Lose(NameOf(other) + " is not in the data file, but found");
        },
        text);
  }
}

/// Counts an object that a walk served.
void Course::Judge(vbPersistent& object, const std::string& own,
                   std::vector<const ListedObject*>& seen, Tally& tally) {
  // The changed object may claim to be another one.
  if (known_.changed != 0 && object.ObjectAddress() == known_.changed) return;
  const ListedObject* listed = Find(object.GetVBClassID(), own);
  if (listed == nullptr) {
    if (known_.changed != 0) return;  // its key may be another now
    ++tally.back;
    Lose("a walk serves an object that is not in the data file");
    return;
  }
  const bool again = std::find(seen.begin(), seen.end(), listed) != seen.end();
  seen.push_back(listed);
  if (IsChanged(*listed)) return;
  if (!again && IsAsListed(object, *listed)) {
    ++tally.right;
    return;
  }
  ++tally.wrong;
  Lose("a walk serves " + NameOf(*listed) + (again ? " twice" : " with other values"));
}

/// Those of a class that a walk didn't serve.
void Course::CountLeft(long classID, const std::vector<const ListedObject*>& seen, bool ended,
                       Tally& tally) const {
  for (const ListedObject& object : known_.objects) {
    if (object.classID != classID || IsChanged(object)) continue;
    if (std::find(seen.begin(), seen.end(), &object) != seen.end()) continue;
    ++(ended ? tally.absent : tally.refused);
  }
}

void Course::ReadInIndexOrder() {
  for (long i = 0; i < kClasses; ++i) {
    std::vector<Served> served;
    std::vector<const ListedObject*> seen;
    char text[Findings::kText] = {};
    const bool ended = Try([&] { WalkInIndexOrder(GetPOD(), ClassIDOf(i), served); }, text);
    for (Served& one : served) {
      if (one.key == one.own || known_.changed != 0) {
        Judge(*one.object, one.own, seen, findings_.inIndexOrder);
        continue;
      }
      ++findings_.inIndexOrder.wrong;
      Lose("a walk serves object" + one.own + " under the key" + one.key);
      if (const ListedObject* listed = Find(ClassIDOf(i), one.own)) seen.push_back(listed);
    }
    CountLeft(ClassIDOf(i), seen, ended, findings_.inIndexOrder);
  }
}

void Course::ReadInFileOrder() {
  for (long i = 0; i < kClasses; ++i) {
    std::vector<const ListedObject*> seen;
    char text[Findings::kText] = {};
    const auto walk = [&] {
      int steps = 0;
      vbINT32 at = NewObject(GetPOD(), ClassIDOf(i))->FirstObject(0);
      while (at > 0 && ++steps < kMostSteps) {
        const auto object = NewObject(GetPOD(), ClassIDOf(i));
        object->ReadObject(at);
        at = object->NextObject(at);
        Judge(*object, KeyOf(*object), seen, findings_.inFileOrder);
      }
    };
    const bool ended = Try(walk, text);
    CountLeft(ClassIDOf(i), seen, ended, findings_.inFileOrder);
  }
}

void Course::Read() {
  findings_.isOpen = Try([this] { OpenDatabase(base_); }, findings_.opened);
  char text[Findings::kText] = {};
  if (findings_.isOpen) {
    Try(
        [this] {
          const CLock lock(GetPOD(), 0);
          ReadByKey(findings_.byKey);
          ReadInIndexOrder();
          ReadInFileOrder();
        },
        text);
  }
  Close();
}

/// A study whose closing failed is closed by the second try, without writing at last.
void Course::Close() {
  char text[Findings::kText] = {};
  for (int i = 0; i < 2 && IsOpen(); ++i) Try([] { CloseDatabase(); }, text);
  if (!IsOpen()) return;
  Lose("the study can't be closed");
  GetPOD()->Abandon();
  delete std::exchange(pPOD, nullptr);
}

// ---- Upkeep ----

void Course::Check() {
  Try([this] { KFileCheck(base_ + ".ksb"); }, findings_.fileCheck);
  Try([this] { KIndexRebuildCheck(base_, false); }, findings_.indexCheck);
}

bool Course::RebuildBoth() {
  const bool file = Try([this] { KFileRebuild(base_ + ".ksb"); }, findings_.fileRebuild);
  const bool index = Try([this] { KIndexRebuildCheck(base_, true); }, findings_.indexRebuild);
  return file && index;
}

void Course::Rebuild() {
  bool rebuilt = RebuildBoth();
  if (!rebuilt && known_.setRight) {
    known_.setRight(base_);
    rebuilt = RebuildBoth();
  }
  findings_.refused = !rebuilt;
  if (OpenAtLast()) {
    char text[Findings::kText] = {};
    Try(
        [this] {
          const CLock lock(GetPOD(), 0);
          ReadByKey(findings_.atLast);
        },
        text);
  }
  Close();
  if (findings_.refused) CountGone();
}

bool Course::OpenAtLast() {
  char text[Findings::kText] = {};
  const auto open = [this] { OpenDatabase(base_); };
  if (Try(open, text)) return true;
  if (known_.setRight) {
    known_.setRight(base_);
    if (Try(open, text)) return true;
  }
  Lose(std::string("open: ") + text);
  return false;
}

namespace {

/// Whether a live block of the file holds the object's record, wherever it lies.
bool Holds(const std::string& data, const ListedObject& object) {
  constexpr std::size_t headers = 36;  // of block and object
  constexpr std::size_t status = 8;
  for (std::size_t at = data.find(object.record); at != std::string::npos;
       at = data.find(object.record, at + 1)) {
    if (at < headers || data[at - headers + status] != 'N') continue;
    if (static_cast<long>(NumberAt(data, at - 8)) == object.classID) return true;
  }
  return false;
}

}  // namespace

/// Looks at the bytes of the data file.
void Course::CountGone() {
  const std::string data = ReadBytes(base_ + ".ksb");
  for (const ListedObject& object : known_.objects) {
    if (IsChanged(object) || Holds(data, object)) continue;
    ++findings_.gone;
    Lose(NameOf(object) + " is gone from the data file");
  }
}

void Course::Open() {
  findings_.isOpen = Try([this] { OpenDatabase(base_); }, findings_.opened);
  Close();
}

void Course::Update() {
  findings_.isOpen = Try([this] { OpenDatabase(base_); }, findings_.opened);
  for (const ListedObject& listed : known_.objects) {
    if (!IsOpen()) break;
    char text[Findings::kText] = {};
    Try(
        [&] {
          const CLock lock(GetPOD(), 0);
          const auto object = NewObject(GetPOD(), listed);
          object->ReadObject(AddressOf(listed));
          if (IsAsListed(*object, listed)) object->PutObject();
        },
        text);
  }
  Close();
}

// ---- Verdicts ----

namespace {

CaseResult Ended(Ending ending, const std::string& note) {
  CaseResult result;
  result.ending = ending;
  note.copy(result.note, sizeof result.note - 1);
  return result;
}

int WronglyServed(const Tally& tally) {
  return tally.wrong + tally.back;
}

}  // namespace

CaseResult VerdictOnReading(const Findings& findings) {
  const bool wrong = WronglyServed(findings.byKey) + WronglyServed(findings.inIndexOrder) +
                         WronglyServed(findings.inFileOrder) >
                     0;
  const bool absent =
      findings.byKey.absent + findings.inIndexOrder.absent + findings.inFileOrder.absent > 0;
  if (wrong || (absent && !findings.told)) return Ended(Ending::Silent, findings.lost);
  if (findings.told) return Ended(Ending::Reported, findings.opened);
  return Ended(Ending::Clean, "");
}

CaseResult VerdictOnForgery(const Findings& findings, std::size_t objects, bool dataIsSound) {
  const int wrong = WronglyServed(findings.byKey) + WronglyServed(findings.inIndexOrder) +
                    WronglyServed(findings.inFileOrder);
  const Tally all{.right = static_cast<int>(objects)};
  const bool healed = findings.atLast == all;
  if (wrong > 0 || (dataIsSound && !healed)) return Ended(Ending::Silent, findings.lost);
  if (findings.told) return Ended(Ending::Reported, findings.lost);
  const bool found = findings.byKey == all && findings.inFileOrder == all;
  return healed && found ? Ended(Ending::Clean, "") : Ended(Ending::Silent, findings.lost);
}

CaseResult VerdictOnRebuild(const Findings& findings, std::size_t objects) {
  const Tally all{.right = static_cast<int>(objects)};
  const bool there = findings.refused || findings.atLast == all;
  if (findings.gone > 0) {
    return Ended(Ending::Silent, std::to_string(findings.gone) + " gone from the data file");
  }
  if (!there) return Ended(Ending::Silent, findings.lost);
  if (findings.told) return Ended(Ending::Reported, findings.indexRebuild);
  return Ended(Ending::Clean, "");
}
