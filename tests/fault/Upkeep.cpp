#include "tests/fault/Upkeep.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <utility>

#include "environment/Logging.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/DBI_IO.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "tests/fault/LogStream.h"
#include "tests/fault/QuickEnvironment.h"
#include "tests/fault/Traces.h"
#include "tests/support/Bytes.h"
#include "tests/support/StoredRecord.h"

namespace {

constexpr std::size_t kMostTold = 40;

bool TellsOfErrors(const LogStream& log) {
  return log.Text().find("ERROR:") != std::string::npos;
}

const char* NameOf(Salvage salvage) {
  switch (salvage) {
    case Salvage::Clean:
      return "clean";
    case Salvage::Reported:
      return "reported";
    case Salvage::Full:
      return "salvaged in full";
    case Salvage::NamedLoss:
      return "salvaged with a named loss";
    case Salvage::NamedByCheck:
      return "salvaged with a loss that the check alone named";
    case Salvage::Refused:
      return "refused";
    case Salvage::SilentlyWrong:
      return "silently wrong";
  }
  return "?";
}

}  // namespace

Upkeep::Upkeep(std::string base, const EveryClassStudy& study, const Damage& damage)
    : base_(std::move(base)), dataPath_(base_ + ".ksb"), study_(study), damage_(damage) {}

CaseResult Upkeep::Run() {
  const Traces traces(base_, study_.Files().data.size() + study_.Files().index.size());
  Check();
  bool rebuilt = true;
  if (damage_.file == Which::Data) {
    rebuilt = RebuildData();
  } else {
    Compare();
  }
  refused_ = !RebuildIndex() || !rebuilt;
  if (Try([this] { OpenDatabase(base_); })) {
    ReadAll();
  } else {
    lost_ = "all";
    if (!refused_) wrongly_ = "all";
  }
  Close();
  if (const std::string left = traces.Left(); !left.empty()) Fail(left);
  return Verdict();
}

/// Whether the step came to its end. Counts what it told of.
template <class Step>
bool Upkeep::Try(Step step) {
  const LogStream log;
  const int before = LoggedFaults();
  bool ended = false;
  try {
    step();
    ended = true;
  } catch (const CKestErr&) {
    ++faults_;
  } catch (const std::exception& error) {
    Fail(std::string("an exception of another family: ") + error.what());
  }
  faults_ += LoggedFaults() - before;
  if (TellsOfErrors(log)) ++faults_;
  return ended;
}

void Upkeep::Fail(const std::string& what) {
  if (failure_.empty()) failure_ = what;
}

// ---- Upkeep ----

void Upkeep::Check() {
  const std::string before = ReadBytes(dataPath_);
  Try([this] { KFileCheck(dataPath_); });
  if (ReadBytes(dataPath_) != before) Fail("a check changed the data file");
  atCheck_ = faults_;
}

bool Upkeep::RebuildData() {
  const std::string before = ReadBytes(dataPath_);
  if (Try([this] { KFileRebuild(dataPath_); })) return true;
  if (ReadBytes(dataPath_) != before) Fail("a refused rebuild changed the data file");
  return false;
}

void Upkeep::Compare() {
  const std::string before = ReadBytes(dataPath_);
  Try([this] { KIndexRebuildCheck(base_, false); });
  if (ReadBytes(dataPath_) != before) Fail("a comparison changed the data file");
  atCheck_ = faults_;
}

bool Upkeep::RebuildIndex() {
  const std::string indexPath = base_ + ".kx";
  const std::string data = ReadBytes(dataPath_);
  const std::string index = ReadBytes(indexPath);
  const bool rebuilt = Try([this] { KIndexRebuildCheck(base_, true); });
  if (ReadBytes(dataPath_) != data) Fail("a rebuild of the index changed the data file");
  const std::string backup = indexPath + ".old";
  const bool keptAside = std::filesystem::exists(backup);
  if (rebuilt && keptAside) Fail("the old index is left behind");
  if (!rebuilt && ReadBytes(keptAside ? backup : indexPath) != index) {
    Fail("a refused rebuild changed the old index");
  }
  return rebuilt;
}

// ---- Reading ----

bool Upkeep::IsItselfDamaged(const StoredObject& object) const {
  if (damage_.file != Which::Data) return false;
  const std::size_t end = object.block + object.length;
  if (damage_.turned == 0) return damage_.offset < end;
  return damage_.offset >= object.block && damage_.offset < end;
}

std::vector<Upkeep::Read> Upkeep::ReadObjects() {
  std::vector<Read> objects;
  for (const StoredObject& stored : study_.Objects()) {
    Read& read = objects.emplace_back();
    read.object = stored.make(GetPOD());
    Try([&] { read.right = read.object->GetObject(); });
  }
  for (const StoredObject& freed : study_.Freed()) {
    Try([&] {
      if (freed.make(GetPOD())->GetObject()) lost_ = freed.name + " is back";
    });
  }
  return objects;
}

/// Stores the object again, for the bytes of the values that were read.
bool Upkeep::IsAsStored(Read& read, const StoredObject& stored) {
  if (!read.right) return false;
  bool same = false;
  Try([&] {
    read.object->PutObject();
    same = StoredRecord(*read.object) == stored.record;
  });
  return same;
}

void Upkeep::ReadAll() {
  Try([this] {
    const CLock lock(GetPOD(), 0);
    std::vector<Read> objects = ReadObjects();
    for (std::size_t i = 0; i < objects.size(); ++i) {
      const StoredObject& stored = study_.Objects()[i];
      if (IsAsStored(objects[i], stored)) continue;
      lost_ = stored.name;
      if (!refused_ && !IsItselfDamaged(stored)) wrongly_ = stored.name;
    }
  });
}

/// A study whose closing failed is closed by the second try, without writing at last.
void Upkeep::Close() {
  for (int i = 0; i < 2 && IsOpen(); ++i) Try([] { CloseDatabase(); });
  if (!IsOpen()) return;
  Fail("the study can't be closed");
  GetPOD()->Abandon();
  delete std::exchange(pPOD, nullptr);
}

// ---- The verdict ----

CaseResult Upkeep::Verdict() const {
  CaseResult result;
  const auto end = [&](Ending ending, Salvage salvage, const std::string& note) {
    result.ending = ending;
    result.figure = static_cast<std::uint8_t>(salvage);
    std::strncpy(result.note, note.c_str(), sizeof result.note - 1);
    return result;
  };
  if (!failure_.empty()) return end(Ending::Failed, Salvage::Clean, failure_);
  if (!lost_.empty() && faults_ == 0) {
    return end(Ending::Silent, Salvage::SilentlyWrong, "lost: " + lost_);
  }
  if (!wrongly_.empty()) {
    return end(Ending::Failed, Salvage::Clean, "lost though not damaged: " + wrongly_);
  }
  if (refused_) return end(Ending::Reported, Salvage::Refused, "");
  if (!lost_.empty()) {
    const bool named = faults_ > atCheck_;
    return end(Ending::Reported, named ? Salvage::NamedLoss : Salvage::NamedByCheck, lost_);
  }
  if (faults_ == 0) return end(Ending::Clean, Salvage::Clean, "");
  return end(Ending::Reported, faults_ > atCheck_ ? Salvage::Full : Salvage::Reported, "");
}

// ---- All cases ----

namespace {

/// How many cases there were for each field and end.
class Figures {
 public:
  void Add(Salvage salvage, const std::string& field) {
    ++totals_[static_cast<std::size_t>(salvage)];
    ++fields_[{salvage, field}];
  }
  void Print() const {
    for (std::size_t i = 0; i < totals_.size(); ++i) {
      std::printf("  %s %d\n", NameOf(static_cast<Salvage>(i)), totals_[i]);
    }
    for (const auto& [place, count] : fields_) {
      if (place.first < Salvage::NamedLoss) continue;
      std::printf("    %s: %5d in %s\n", NameOf(place.first), count, place.second.c_str());
    }
  }

 private:
  std::array<int, 7> totals_{};
  std::map<std::pair<Salvage, std::string>, int> fields_;
};

void Judge(const std::vector<Damage>& damages, const std::vector<CaseResult>& results,
           const FileMap& map, const std::string& title) {
  Figures figures;
  SummaryRow row{title};
  std::size_t told = 0;
  for (std::size_t i = 0; i < damages.size(); ++i) {
    const CaseResult& result = results[i];
    Count(row, result);
    if (result.ending <= Ending::Silent) {
      const bool cut = damages[i].turned == 0;
      figures.Add(static_cast<Salvage>(result.figure),
                  cut ? "a cut file" : map.At(damages[i].offset));
    }
    if (result.ending >= Ending::Silent && ++told <= kMostTold) {
      ADD_FAILURE() << Describe(damages[i], map) << ": " << EndingName(result.ending) << ", "
                    << result.note;
    }
  }
  figures.Print();
  AppendSummary({row});
}

}  // namespace

CaseResult UpkeepOf(const EveryClassStudy& study, const Damage& damage, const FilePair& files) {
  const std::string base = study.Folder() / "damaged";
  for (const char* left : {".lck", ".kx.old", ".ksb.new"}) {  // of another one
    std::filesystem::remove_all(base + left);
  }
  WriteBytes(base + ".ksb", files.data);
  WriteBytes(base + ".kx", files.index);
  return Upkeep(base, study, damage).Run();
}

void UpkeepAll(const EveryClassStudy& study, const std::vector<Damage>& damages,
               const std::string& title) {
  ASSERT_FALSE(damages.empty());
  const auto start = std::chrono::steady_clock::now();
  const auto results = RunCases(damages.size(), [&](std::size_t i) {
    return UpkeepOf(study, damages[i], Apply(study.Files(), damages[i]));
  });
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const Which file = damages.front().file;
  std::printf("%s file of %zu bytes, %s: %zu cases in %.1f s\n", FileName(file),
              BytesOf(study.Files(), file).size(), title.c_str(), damages.size(), took.count());
  Judge(damages, results, MapOf(study.Files(), file),
        std::string(FileName(file)) + " file, " + title);
}
