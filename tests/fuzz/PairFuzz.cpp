#include <algorithm>
#include <filesystem>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/vpersist.h"
#include "tests/fuzz/FuzzedStudy.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/fuzz/Target.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"

// Both files of a study, mostly with right checksums, through all upkeep and a whole use.
//
// An input is the length of the data file in four bytes, the data file and the index file.

namespace {

constexpr std::size_t kHead = 4;
constexpr int kMostSteps = 5000;  // of a walk through files of some hundred objects
constexpr std::size_t kMostGrowth = 1 << 16;

FilePair Split(const std::string& input) {
  if (input.size() < kHead) return {};
  const std::size_t length = static_cast<std::uint32_t>(WordAt(input, 0));
  const std::size_t data = std::min(length, input.size() - kHead);
  return {input.substr(kHead, data), input.substr(kHead + data)};
}

std::string Join(const FilePair& files) {
  return Word(static_cast<long>(files.data.size())) + files.data + files.index;
}

// ---- Use ----

void WalkObjects(vbPersistent& object) {
  int steps = 0;
  for (vbINT32 at = object.FirstObject(0); at > 0; at = object.NextObject(at)) {
    Require(++steps <= kMostSteps, "an endless walk through the objects");
    Try([&] { object.ReadObject(at); });
    Try([&] { object.PrevObject(at); });
  }
  object.CountObjects();
}

void WalkKeys(vBtree& tree) {
  KSBKey key;
  KSBKey work;
  int steps = 0;
  for (bool more = tree.FindFirst(key, true); more; more = tree.FindNext(key, work, true)) {
    Require(++steps <= kMostSteps, "an endless walk through a tree");
  }
}

void ReadStudy(POD* pod, const std::vector<StoredObject>& objects) {
  const CLock lock(pod, 0);
  for (const StoredObject& stored : objects) {
    const auto object = stored.make(pod);
    Try([&] { object->GetObject(); });
    Try([&] { WalkKeys(*pod->Index(object->GetVBClassIndex())); });
  }
  Try([&] { WalkObjects(*objects.back().make(pod)); });
  for (vbDatabase* file : {pod->DataFile(), pod->IndexFile()}) {
    Try([&] { file->VBTotal(); });
    Try([&] { file->VBDeleted(nullptr, nullptr); });
  }
}

/// Stores every other object anew and frees every fourth.
void ChangeStudy(POD* pod, const std::vector<StoredObject>& objects) {
  const CLock lock(pod, 0);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const auto object = objects[i].make(pod);
    if (i % 2 == 0) Try([&] { object->PutObject(); });
    if (i % 4 == 1) Try([&] { i % 8 == 1 ? object->RemoveObject() : object->DeleteObject(); });
  }
}

void UseStudy(const FuzzedStudy& study) {
  if (!Try([&] { OpenDatabase(study.Base()); })) return;
  Try([&] { ReadStudy(GetPOD(), study.Objects()); });
  Try([&] { ChangeStudy(GetPOD(), study.Objects()); });
  Try([&] { ReadStudy(GetPOD(), study.Objects()); });
  CloseInAnyCase();
}

// ---- Upkeep ----

/// What only looks.
void Check(const FuzzedStudy& study) {
  const std::string data = ReadBytes(study.DataPath());
  Try([&] { KFileCheck(study.DataPath()); });
  Try([&] { KFileStats(study.DataPath(), true); });
  Try([&] { KIndexStats(study.Base(), true); });
  Try([&] { KIndexRebuildCheck(study.Base(), false); });
  Require(ReadBytes(study.DataPath()) == data, "a check has changed the data file");
}

void Rebuild(const FuzzedStudy& study) {
  const std::string data = ReadBytes(study.DataPath());
  if (!Try([&] { KFileRebuild(study.DataPath()); })) {
    Require(ReadBytes(study.DataPath()) == data, "a refused rebuild has changed the data file");
  }
  const std::string rebuilt = ReadBytes(study.DataPath());
  Try([&] { KIndexRebuildCheck(study.Base(), true); });
  Require(ReadBytes(study.DataPath()) == rebuilt, "a rebuilt index has changed the data file");
}

std::size_t SizeOf(const std::string& path) {
  std::error_code none;
  const auto size = std::filesystem::file_size(path, none);
  return none ? 0 : static_cast<std::size_t>(size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedStudy& study = FuzzedStudy::Instance();
  const FilePair files = Split({reinterpret_cast<const char*>(data), size});
  const Budget budget(size);
  study.Write(files);
  Check(study);
  UseStudy(study);
  const std::size_t most = std::max(size, study.Sound().index.size()) + kMostGrowth;
  Require(std::max(SizeOf(study.DataPath()), SizeOf(study.IndexPath())) <= most, "a file grew");
  study.Write(files);
  Rebuild(study);
  UseStudy(study);
  Check(study);
  study.CheckTraces();
  budget.Check();
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t mostSize, unsigned seed) {
  FilePair files = Split({reinterpret_cast<const char*>(data), size});
  const std::size_t total = kHead + files.data.size() + files.index.size();
  Mutator mutator(seed);
  std::string& file = mutator.Below(3) == 0 ? files.index : files.data;
  if (mostSize >= total) mutator.Mutate(file, file.size() + mostSize - total);
  std::string input = Join(files);
  input.resize(std::min(input.size(), mostSize));
  std::copy(input.begin(), input.end(), data);
  return input.size();
}

std::vector<std::string> Seeds() {
  const FilePair& sound = FuzzedStudy::Instance().Sound();
  return {Join(sound), Join({sound.data, ""})};
}
