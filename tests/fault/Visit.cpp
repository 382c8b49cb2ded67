#include "tests/fault/Visit.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <utility>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "tests/fault/FileMap.h"
#include "tests/support/Bytes.h"

namespace {

constexpr std::size_t kMostGrowth = 1 << 16;
constexpr std::size_t kMostSteps = 5000;  // of a walk through some fifty objects

/// Freed before the study was damaged.
const std::vector<KnownObject> kFreed = {{Kind::Plain, 5},     {Kind::Plain, 20},
                                         {Kind::Plain, 25},    {Kind::Plain, 30},
                                         {Kind::Sample, 4, 1}, {Kind::Sample, 9}};

/// The first is small enough for a free block to be split, the second makes a full node split, the
/// third lies behind all others.
const std::vector<KnownObject> kAdded = {
    {Kind::Plain, 100}, {Kind::Triple, 40}, {Kind::Sample, 98, 3}};

/// In trees of order 8 the first two make two leaves be merged, the next two a leaf borrow a key.
const std::vector<KnownObject> kRemoved = {
    {Kind::Plain, 2}, {Kind::Plain, 3}, {Kind::Plain, 11}, {Kind::Plain, 12}, {Kind::Sample, 7, 1}};

/// A key whose leaf then needs its sibling, and one that parts two leaves.
const std::vector<KnownObject> kUpdated = {{Kind::Sample, 2, 2}, {Kind::Sample, 5, 2}};

bool IsKey(const KnownObject& left, const KnownObject& right) {
  return left.kind == right.kind && left.id == right.id && left.number == right.number;
}

bool IsRemoved(const KnownObject& object) {
  return std::any_of(kRemoved.begin(), kRemoved.end(),
                     [&](const KnownObject& removed) { return IsKey(removed, object); });
}

std::size_t SizeOf(const std::string& path) {
  std::error_code none;
  const auto size = std::filesystem::file_size(path, none);
  return none ? 0 : static_cast<std::size_t>(size);
}

std::string KeyText(const KnownObject& object) {
  return WithRecord(GetPOD(), object, [](auto& record) {
    char text[64];
    return std::string(record.MakeKey(text));
  });
}

vBtree& TreeOf(Kind kind) {
  const unsigned index = WithRecord(GetPOD(), {kind}, [](auto& r) { return r.GetVBClassIndex(); });
  return *GetPOD()->Index(index);
}

}  // namespace

Visit::Visit(std::string base, const std::vector<KnownObject>& objects,
             const std::vector<int>& triples, long changed)
    : base_(std::move(base)), objects_(objects), triples_(triples), changed_(changed) {}

CaseResult Visit::Run() {
  dataSize_ = SizeOf(base_ + ".ksb");
  indexSize_ = SizeOf(base_ + ".kx");
  const Traces traces(base_, std::max(dataSize_, indexSize_));
  const bool upgraded = IsOfAnotherVersion();
  Try([this] { OpenDatabase(base_); });
  if (IsOpen() && upgraded) {
    TryLocked([this] { ReadPoints(); });
  } else if (IsOpen()) {
    TryLocked([this] { Read(); });
    silentRead_ = exceptions_ == 0 && !loss_.empty();
    Write();
    TryLocked([this] { ReadAgain(); });
  }
  Close();
  CheckTraces(traces);
  return Verdict();
}

/// Whether opening the study rebuilds both of its files.
bool Visit::IsOfAnotherVersion() const {
  constexpr std::size_t at = 24;
  const std::string data = ReadBytes(base_ + ".ksb");
  if (data.size() < at + 4) return false;
  const auto version = static_cast<std::int32_t>(NumberAt(data, at));
  return version > 0 && version != vbDatabase::VBDVersion;
}

/// The one object that a rebuilt index leads to: the library knows no other class of the study.
void Visit::ReadPoints() {
  if (ReadByKey({Kind::Points}) == Found::Missing) Lose("the design points are missing");
}

void Visit::Read() {
  ReadAll();
  for (const Kind kind : {Kind::Plain, Kind::Sample, Kind::Points}) WalkObjects(kind);
  for (const Kind kind : {Kind::Plain, Kind::Sample, Kind::Points, Kind::Triple}) WalkKeys(kind);
}

void Visit::Write() {
  TryLocked([this] {
    for (const KnownObject& object : kAdded) Try([&] { Add(object); });
  });
  TryLocked([this] {
    for (const KnownObject& object : kUpdated) Try([&] { Store(GetPOD(), object); });
  });
  TryLocked([this] {
    for (const KnownObject& object : kRemoved) Try([&] { Remove(object); });
  });
}

template <class Step>
void Visit::Try(Step step) {
  try {
    step();
  } catch (const std::exception& error) {
    ++exceptions_;
    if (exception_.empty()) exception_ = error.what();
  } catch (...) {
    Fail("an exception of no known kind");
  }
}

template <class Step>
void Visit::TryLocked(Step step) {
  Try([&] {
    const CLock lock(GetPOD(), 0);
    step();
  });
}

void Visit::Fail(const std::string& what) {
  if (failure_.empty()) failure_ = what;
}

void Visit::Lose(const std::string& what) {
  if (loss_.empty()) loss_ = what;
}

bool Visit::IsExempt(const KnownObject& object) const {
  return changed_ != 0 && object.address == changed_;
}

// ---- Reading ----

Visit::Found Visit::ReadByKey(const KnownObject& object) {
  auto found = Found::Failed;
  Try([&] {
    found = WithRecord(GetPOD(), object, [&](auto& record) {
      if (!record.GetObject()) return Found::Missing;
      return IsAsStored(record, object) ? Found::Right : Found::Wrong;
    });
  });
  if (found == Found::Wrong && IsExempt(object)) found = Found::Right;
  if (found == Found::Wrong) Fail("a wrong value of " + Name(object));
  return found;
}

void Visit::ReadAll() {
  for (const KnownObject& object : objects_) {
    first_.push_back(ReadByKey(object));
    if (first_.back() == Found::Missing) Lose(Name(object) + " is missing");
  }
  for (const KnownObject& object : kFreed) {
    if (ReadByKey(object) == Found::Right) Lose(Name(object) + " is back");
  }
}

/// After objects were added and removed: what could be read before can be read still.
void Visit::ReadAgain() {
  for (std::size_t i = 0; i < first_.size(); ++i) {
    const Found found = ReadByKey(objects_[i]);
    if (IsRemoved(objects_[i])) {
      if (found == Found::Right) Lose(Name(objects_[i]) + " is still there");
      continue;
    }
    if (found == Found::Missing) Lose(Name(objects_[i]) + " is missing at last");
    if (first_[i] == Found::Right && found != Found::Right) spread_ = Name(objects_[i]);
  }
  for (const KnownObject& object : kAdded) {
    if (ReadByKey(object) == Found::Missing) Lose("the new " + Name(object) + " is missing");
  }
  CountAgain(Kind::Plain, -3);
  CountAgain(Kind::Sample, 0);
  CountAgain(Kind::Triple, 1);
  for (vbDatabase* file : {GetPOD()->DataFile(), GetPOD()->IndexFile()}) {
    Try([file] { file->VBTotal(); });
    Try([file] { file->VBDeleted(nullptr, nullptr); });
  }
}

void Visit::CountAgain(Kind kind, int change) {
  Try([&] {
    const int count = WithRecord(GetPOD(), {kind}, [](auto& r) { return r.CountObjects(); });
    if (count != static_cast<int>(AddressesOf(kind).size()) + change) Lose("another count at last");
  });
}

// ---- Walks ----

std::vector<long> Visit::AddressesOf(Kind kind) const {
  std::vector<long> addresses;
  for (const KnownObject& object : objects_) {
    if (object.kind == kind) addresses.push_back(object.address);
  }
  std::sort(addresses.begin(), addresses.end());
  return addresses;
}

void Visit::WalkObjects(Kind kind) {
  const KnownObject any{kind};
  WithRecord(GetPOD(), any, [&](auto& record) {
    const std::vector<long> expected = AddressesOf(kind);
    std::vector<long> found;
    Try([&] {
      found = Forwards(record);
      if (found != expected) Lose("a walk forwards found other objects");
    });
    Try([&] {
      if (record.CountObjects() != static_cast<int>(expected.size())) Lose("another count");
    });
    Try([&] {
      std::vector<long> reversed = Backwards(record, expected.back());
      if (reversed != std::vector<long>(expected.rbegin() + 1, expected.rend())) {
        Lose("a walk backwards found other objects");
      }
    });
    for (const long address : found) Try([&] { ReadAtAddress(record, address); });
  });
}

template <class Record>
std::vector<long> Visit::Forwards(Record& record) {
  std::vector<long> found;
  for (long at = record.FirstObject(0); at > 0; at = record.NextObject(at)) {
    found.push_back(at);
    if (found.size() > kMostSteps) {
      Fail("an endless walk forwards");
      break;
    }
  }
  return found;
}

template <class Record>
std::vector<long> Visit::Backwards(Record& record, long last) {
  std::vector<long> found;
  for (long at = record.PrevObject(last); at > 0; at = record.PrevObject(at)) {
    found.push_back(at);
    if (found.size() > kMostSteps) {
      Fail("an endless walk backwards");
      break;
    }
  }
  return found;
}

template <class Record>
void Visit::ReadAtAddress(Record& record, long address) {
  record.ReadObject(address);
  const auto is = [&](const KnownObject& object) { return object.address == address; };
  const auto object = std::find_if(objects_.begin(), objects_.end(), is);
  if (object == objects_.end()) {
    Lose("an object that was not stored");
  } else if (!IsExempt(*object) && !IsAsStored(record, *object)) {
    Fail("a wrong value at the address of " + Name(*object));
  }
}

void Visit::WalkKeys(Kind kind) {
  std::vector<std::string> expected;
  for (const KnownObject& object : objects_) {
    if (object.kind == kind) expected.push_back(KeyText(object));
  }
  if (kind == Kind::Triple) {
    for (const int id : triples_) expected.push_back(KeyText({kind, id}));
  }
  std::sort(expected.begin(), expected.end());

  vBtree& tree = TreeOf(kind);
  const auto walk = [&](auto first, auto next) {
    std::vector<std::string> found;
    KSBKey key;
    KSBKey work;
    for (bool more = (tree.*first)(key, true); more; more = (tree.*next)(key, work, true)) {
      found.emplace_back(key.ObjectName, strnlen(key.ObjectName, sizeof key.ObjectName));
      if (found.size() > kMostSteps) {
        Fail("an endless walk through a tree");
        break;
      }
    }
    return found;
  };
  Try([&] {
    if (walk(&vBtree::FindFirst, &vBtree::FindNext) != expected) Lose("other keys upwards");
  });
  std::reverse(expected.begin(), expected.end());
  Try([&] {
    if (walk(&vBtree::FindLast, &vBtree::FindPrev) != expected) Lose("other keys downwards");
  });
}

// ---- Writing ----

void Visit::Add(const KnownObject& object) {
  WithRecord(GetPOD(), object, [](auto& record) {
    Fill(record);
    record.WriteObject(true);
  });
}

void Visit::Remove(const KnownObject& object) {
  WithRecord(GetPOD(), object, [&](auto& record) {
    if (!record.RemoveObject()) Lose(Name(object) + " was not removed");
  });
}

/// A study whose closing failed is closed by the second try, without writing at last.
void Visit::Close() {
  for (int i = 0; i < 2 && IsOpen(); ++i) Try([] { CloseDatabase(); });
  if (!IsOpen()) return;
  Fail("the study can't be closed");
  GetPOD()->Abandon();
  delete std::exchange(pPOD, nullptr);
}

// ---- The verdict ----

void Visit::CheckTraces(const Traces& traces) {
  if (const std::string left = traces.Left(); !left.empty()) Fail(left);
  if (SizeOf(base_ + ".ksb") > dataSize_ + kMostGrowth ||
      SizeOf(base_ + ".kx") > indexSize_ + kMostGrowth) {
    Fail("a file grew to " +
         std::to_string(std::max(SizeOf(base_ + ".ksb"), SizeOf(base_ + ".kx"))) + " bytes");
  }
}

CaseResult Visit::Verdict() const {
  CaseResult result;
  std::strncpy(result.spread, spread_.c_str(), sizeof result.spread - 1);
  result.silentRead = silentRead_;
  const auto end = [&](Ending ending, const std::string& note) {
    result.ending = ending;
    std::strncpy(result.note, note.c_str(), sizeof result.note - 1);
    return result;
  };
  if (!failure_.empty()) return end(Ending::Failed, failure_);
  if (exceptions_ > 0) return end(Ending::Reported, exception_);
  if (!loss_.empty()) return end(Ending::Silent, loss_);
  return end(Ending::Clean, "");
}
