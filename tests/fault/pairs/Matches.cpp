#include "tests/fault/pairs/Matches.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "definition/Input.h"
#include "definition/Resp.h"
#include "index/KSBKey.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/Message.h"
#include "results/Residual.h"
#include "store/DBI_IO.h"
#include "task/DVar.h"
#include "tests/fault/EveryClassStudy.h"
#include "tests/fault/pairs/ObjectList.h"
#include "tests/support/Bytes.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr std::size_t kHeader = 40;
constexpr int kTrees = 25;
constexpr int kOrder = 4;
constexpr int kForeign = 100;

void OpenAnew(const std::string& base, int order) {
  KSBKey key;
  pPOD = new POD(base + ".ksb");
  pPOD->Open(base + ".ksb", base + ".kx", key, order, vbReadWrite, 1, 0, kTrees);
}

FilePair ReadPair(const std::string& base) {
  return {ReadBytes(base + ".ksb"), ReadBytes(base + ".kx")};
}

/// The files of a study behind `change`.
FilePair Changed(const FilePair& files, const std::function<void()>& change) {
  const TempFolder folder;
  const std::string base = folder / "study";
  WriteBytes(base + ".ksb", files.data);
  WriteBytes(base + ".kx", files.index);
  OpenDatabase(base);
  {
    const CLock lock(GetPOD(), 0);
    change();
  }
  CloseDatabase();
  return ReadPair(base);
}

/// A new study with these objects, which were read from another one.
FilePair StudyOf(const std::vector<std::unique_ptr<vbPersistent>>& objects) {
  const TempFolder folder;
  OpenAnew(folder / "study", kOrder);
  {
    const CLock lock(GetPOD(), 0);
    for (const auto& object : objects) {
      object->Connect(GetPOD());
      object->PutObject();
    }
  }
  CloseDatabase();
  return ReadPair(folder / "study");
}

template <class Class>
Class Loaded(vbINT32 Class::*number, int value) {
  Class object(GetPOD());
  object.*number = value;
  object.GetObject();
  return object;
}

CDPoint LoadedPoint(int number) {
  CDPoint point(GetPOD());
  point.m_nTaskID = 1;
  point.m_nPointID = number;
  point.GetObject();
  return point;
}

void StoreMore() {
  auto input = Loaded(&CInput::m_nID, 1);
  input.m_nID = 4;
  input.PutObject();
  auto resp = Loaded(&CResp::m_nID, 3);
  resp.m_nID = 4;
  resp.PutObject();
  for (const int number : {3, 4}) {
    auto point = LoadedPoint(2);
    point.m_nPointID = number;
    point.PutObject();
  }
  auto messages = Loaded(&CMessage::m_nID, 1);
  messages.m_nID = 3;
  messages.PutObject();
}

void RemoveSome() {
  Loaded(&CInput::m_nID, 1).RemoveObject();
  LoadedPoint(2).RemoveObject();
  Loaded(&CMessage::m_nID, 1).DeleteObject();
  CResidual residual(GetPOD());
  residual.m_nTaskID = 1;
  residual.RemoveObject();
}

/// Each block goes to an object of the same length.
void ReplaceSome() {
  auto input = Loaded(&CInput::m_nID, 1);
  auto point = LoadedPoint(2);
  auto messages = Loaded(&CMessage::m_nID, 1);
  RemoveSome();
  input.m_nID = 5;
  input.PutObject();
  point.m_nPointID = 5;
  point.PutObject();
  messages.m_nID = 5;
  messages.PutObject();
}

void GiveToAnotherClass() {
  Loaded(&CDVar::m_nID, 1).RemoveObject();
  CMessage messages(GetPOD());
  messages.m_nID = 6;
  messages.m_Messages = {std::string(100, 'm')};
  messages.PutObject();
}

void GrowSome() {
  auto input = Loaded(&CInput::m_nID, 1);
  input.m_strName += std::string(500, 'n');
  input.PutObject();
  auto point = LoadedPoint(2);
  point.m_IResp.resize(70, 1.5);
  point.PutObject();
  auto messages = Loaded(&CMessage::m_nID, 1);
  messages.m_Messages.push_back(std::string(600, 'm'));
  messages.PutObject();
}

/// The last block freed is the first to be taken again.
void SwapSome() {
  auto first = Loaded(&CInput::m_nID, 1);
  auto third = Loaded(&CInput::m_nID, 3);
  auto point = LoadedPoint(0);
  auto other = LoadedPoint(2);
  first.RemoveObject();
  third.RemoveObject();
  first.PutObject();
  third.PutObject();
  point.RemoveObject();
  other.RemoveObject();
  point.PutObject();
  other.PutObject();
}

/// All objects of the open study, copied from where they lie.
std::vector<std::unique_ptr<vbPersistent>> AllOf(const std::string& data) {
  std::vector<std::unique_ptr<vbPersistent>> objects;
  for (const ListedObject& listed : ObjectsIn(data)) {
    objects.push_back(NewObject(GetPOD(), listed));
    objects.back()->GetObject();
  }
  return objects;
}

FilePair Turned(const FilePair& files) {
  std::vector<std::unique_ptr<vbPersistent>> objects;
  Changed(files, [&] { objects = AllOf(files.data); });
  std::reverse(objects.begin(), objects.end());
  return StudyOf(objects);
}

/// The same objects, but for the singletons under other keys.
FilePair Foreign(const FilePair& files) {
  std::vector<std::unique_ptr<vbPersistent>> objects;
  for (ListedObject& listed : ObjectsIn(files.data)) {
    for (int& field : listed.key) field += kForeign;
    objects.push_back(NewObject(nullptr, listed));
  }
  return StudyOf(objects);
}

FilePair Fresh() {
  const TempFolder folder;
  OpenDatabase(folder / "study");
  CloseDatabase();
  return ReadPair(folder / "study");
}

StudyFiles Make() {
  StudyFiles files;
  files.whole = EveryClassStudy().Files();
  files.more = Changed(files.whole, StoreMore);
  files.less = Changed(files.whole, RemoveSome);
  files.reused = Changed(files.whole, ReplaceSome);
  files.retaken = Changed(files.whole, GiveToAnotherClass);
  files.grown = Changed(files.whole, GrowSome);
  files.swapped = Changed(files.whole, SwapSome);
  files.turned = Turned(files.whole);
  files.foreign = Foreign(files.whole);
  files.fresh = Fresh();
  files.empty = StudyOf({});
  return files;
}

}  // namespace

const StudyFiles& Files() {
  static const StudyFiles files = Make();
  return files;
}

FilePair WithOrder(const FilePair& files, int order) {
  const TempFolder folder;
  WriteBytes(folder / "study.ksb", files.data);
  OpenAnew(folder / "study", order);
  {
    const CLock lock(GetPOD(), 0);
    for (const ListedObject& listed : ObjectsIn(files.data)) {
      const auto object = NewObject(GetPOD(), listed);
      object->Add(static_cast<long>(listed.block) + 28, listed.classID);
    }
  }
  CloseDatabase();
  return ReadPair(folder / "study");
}

FilePair Compacted(const FilePair& files) {
  const TempFolder folder;
  const std::string path = folder / "study.ksb";
  WriteBytes(path, files.data);
  KFileRebuild(path);
  return {ReadBytes(path), files.index};
}

std::string Exchanged(std::string index, std::size_t tree, std::size_t other) {
  std::swap_ranges(index.begin() + static_cast<long>(kHeader * (tree + 1)),
                   index.begin() + static_cast<long>(kHeader * (tree + 2)),
                   index.begin() + static_cast<long>(kHeader * (other + 1)));
  return index;
}

std::string Moved(const std::string& index) {
  const std::string headers = index.substr(kHeader, kHeader * kTrees);
  const std::string last = headers.substr(kHeader * (kTrees - 1));
  return index.substr(0, kHeader) + last + headers.substr(0, kHeader * (kTrees - 1)) +
         index.substr(kHeader * (kTrees + 1));
}
