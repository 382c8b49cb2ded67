#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "store/vpersist.h"
#include "tests/fuzz/FuzzedStudy.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/fuzz/Mutator.h"
#include "tests/fuzz/Target.h"
#include "tests/support/BlockFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"

// Both files of a study, mostly with right checksums, through all upkeep and a whole use.
//
// An input is a word, the data file and the index file. Three bytes of the word are the length of
// the data file; the bits of the last say what else is or isn't there.

namespace {

constexpr std::size_t kHead = 4;
constexpr int kMostSteps = 5000;  // of a walk through files of some hundred objects
constexpr std::size_t kMostGrowth = 1 << 16;

/// What a process that died leaves, and what somebody deleted.
enum Odds : unsigned {
  kNoIndex = 0x80,
  kNoData = 0x40,
  kMark = 0x20,
  kOldIndex = 0x10,
  kCopy = 0x08,
};

struct Input {
  unsigned odds = 0;
  FilePair files;
};

Input Split(const std::string& bytes) {
  if (bytes.size() < kHead) return {};
  const auto word = static_cast<std::uint32_t>(WordAt(bytes, 0));
  const std::size_t data = std::min<std::size_t>(word & 0xFFFFFF, bytes.size() - kHead);
  return {word >> 24, {bytes.substr(kHead, data), bytes.substr(kHead + data)}};
}

std::string Join(const Input& input) {
  const std::size_t head = input.files.data.size() | std::size_t{input.odds} << 24;
  return Word(static_cast<long>(head)) + input.files.data + input.files.index;
}

void Write(FuzzedStudy& study, const Input& input) {
  study.Write(input.files);
  if ((input.odds & kCopy) != 0) WriteBytes(study.DataPath() + ".new", input.files.data);
  if ((input.odds & kOldIndex) != 0) WriteBytes(study.IndexPath() + ".old", input.files.index);
  if ((input.odds & kMark) != 0) WriteBytes(study.IndexPath() + ".new", "");
  if ((input.odds & kNoData) != 0) std::filesystem::remove(study.DataPath());
  if ((input.odds & kNoIndex) != 0) std::filesystem::remove(study.IndexPath());
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

/// What there is for single blocks.
void UseBlock(vbDatabase& file, const vbINT32& block, bool revive) {
  const vbINT32 object = block + static_cast<long>(file.VBHeaderSize());
  Try([&] { file.FindFirstVB(object); });
  Try([&] { file.ReadObjectChecksum(object, nullptr, nullptr); });
  // The rest of a free block that was split has no record lock yet.
  vbBlockHeader header;
  file.ReadBlockHdr(&header, block);
  for (const auto type : {vbReadLock, vbWriteLock}) {
    if (header.StatusLetter() != vbNormalBlock) break;
    Try([&] { file.LockRecord(type, block); });
    Try([&] { file.UnlockRecord(type, block); });
  }
  Try([&] { revive ? file.Restore(object) : file.UnDelete(object); });
}

void UseBlocks(vbDatabase& file) {
  int steps = 0;
  for (vbINT32 at = file.FindFirstVB(0); at > 0; at = file.FindNextVB(at)) {
    Require(++steps <= kMostSteps, "an endless walk through the blocks");
    UseBlock(file, at, steps % 2 == 0);
    if (steps % 8 == 3) Try([&] { file.Alloc(file.ObjectLength(at + 28L), vbReclaimBestFit); });
  }
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

void ReviveStudy(POD* pod) {
  const CLock lock(pod, 0);
  UseBlocks(*pod->DataFile());
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
  Try([&] { ReviveStudy(GetPOD()); });
  CloseInAnyCase();
}

// ---- Upkeep ----

std::size_t SizeOf(const std::string& path) {
  std::error_code none;
  const auto size = std::filesystem::file_size(path, none);
  return none ? 0 : static_cast<std::size_t>(size);
}

/// The bytes of a file that may not be there, in one go.
std::string BytesOf(const std::string& path) {
  std::string bytes(SizeOf(path), '\0');
  std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<long>(bytes.size()));
  return bytes;
}

/// What only looks.
void Check(const FuzzedStudy& study) {
  const std::string data = BytesOf(study.DataPath());
  Try([&] { KFileCheck(study.DataPath()); });
  Try([&] { KFileStats(study.DataPath(), true); });
  Try([&] { KFileStats(study.IndexPath(), false); });
  Try([&] { KIndexStats(study.Base(), true); });
  Try([&] { KIndexRebuildCheck(study.Base(), false); });
  Require(BytesOf(study.DataPath()) == data, "a check has changed the data file");
}

/// Whether both rebuilds ended well.
bool Rebuild(const FuzzedStudy& study) {
  const std::string data = BytesOf(study.DataPath());
  const bool rebuilt = Try([&] { KFileRebuild(study.DataPath()); });
  const std::string after = BytesOf(study.DataPath());
  Require(rebuilt || after == data, "a refused rebuild has changed the data file");
  const bool indexed = Try([&] { KIndexRebuildCheck(study.Base(), true); });
  Require(BytesOf(study.DataPath()) == after, "a rebuilt index has changed the data file");
  return rebuilt && indexed;
}

/// What the rebuilds have made is sound, and can be rebuilt without a change.
void CheckRebuilt(const FuzzedStudy& study) {
  const std::string data = BytesOf(study.DataPath());
  const std::string index = BytesOf(study.IndexPath());
  Require(Try([&] { KFileCheck(study.DataPath()); }), "a rebuilt data file fails its check");
  Require(Try([&] { KIndexRebuildCheck(study.Base(), false); }), "a rebuilt index fails its check");
  Require(Rebuild(study), "a rebuilt study can't be rebuilt");
  Require(BytesOf(study.DataPath()) == data, "a second rebuild has changed the data file");
  Require(BytesOf(study.IndexPath()) == index, "a second rebuild has changed the index file");
}

/// In a sound study every object can be put, and is there then.
void PutEverything(POD* pod, const std::vector<StoredObject>& objects) {
  const CLock lock(pod, 0);
  for (const StoredObject& stored : objects) {
    const auto object = stored.make(pod);
    Require(Try([&] { object->PutObject(); }), "a rebuilt study takes no " + stored.name);
    bool found = false;
    Require(Try([&] { found = object->GetObject(); }) && found, "lost: " + stored.name);
  }
}

void UseRebuilt(const FuzzedStudy& study) {
  if (!Try([&] { OpenDatabase(study.Base()); })) return;
  PutEverything(GetPOD(), study.Objects());
  CloseInAnyCase();
}

void UseAndRebuild(FuzzedStudy& study, const Input& input, std::size_t size) {
  Write(study, input);
  Check(study);
  UseStudy(study);
  const std::size_t most = 2 * std::max(size, study.Sound().index.size()) + kMostGrowth;
  Require(std::max(SizeOf(study.DataPath()), SizeOf(study.IndexPath())) <= most, "a file grew");
  Write(study, input);
  if (Rebuild(study)) {
    CheckRebuilt(study);
    UseRebuilt(study);
  } else {
    UseStudy(study);
    Check(study);
  }
  Try([&] { KForceUnlock(study.DataPath()); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedStudy& study = FuzzedStudy::Instance();
  const Budget budget(size);
  UseAndRebuild(study, Split({reinterpret_cast<const char*>(data), size}), size);
  study.CheckTraces();
  budget.Check();
  return 0;
}

// ---- Mutation ----

namespace {

void Mutate(Input& input, const Input& other, std::size_t mostSize, Mutator& mutator) {
  const std::size_t size = kHead + input.files.data.size() + input.files.index.size();
  const std::size_t room = mostSize > size ? mostSize - size : 0;
  if (mutator.Below(64) == 0) input.odds ^= 0x80U >> mutator.Below(5);
  const bool index = mutator.Below(3) == 0;
  std::string& file = index ? input.files.index : input.files.data;
  mutator.Mutate(file, file.size() + room, index ? other.files.index : other.files.data);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t mostSize, unsigned seed) {
  Input input = Split({reinterpret_cast<const char*>(data), size});
  Mutator mutator(seed);
  Mutate(input, input, mostSize, mutator);
  return HandOver(Join(input), data, mostSize);
}

/// One file of each, or one input with blocks of the other.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t mostSize,
                                                 unsigned seed) {
  Input input = Split({reinterpret_cast<const char*>(data1), size1});
  const Input other = Split({reinterpret_cast<const char*>(data2), size2});
  Mutator mutator(seed);
  if (mutator.Below(4) == 0) {
    input.files.index = other.files.index;
  } else {
    Mutate(input, other, mostSize, mutator);
  }
  return HandOver(Join(input), out, mostSize);
}

std::vector<std::string> Seeds() {
  const FilePair& sound = FuzzedStudy::Instance().Sound();
  std::vector<std::string> seeds = {Join({0, sound}), Join({0, {sound.data, ""}})};
  for (const unsigned odds : {kNoIndex, kNoData, kMark, kOldIndex, kCopy}) {
    seeds.push_back(Join({odds, sound}));
  }
  seeds.push_back(Join({kNoData | kNoIndex, {}}));
  return seeds;
}
