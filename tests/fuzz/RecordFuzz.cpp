#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <memory>
#include <utility>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/vpersist.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/fuzz/FuzzedStudy.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/fuzz/Mutator.h"
#include "tests/fuzz/Target.h"
#include "tests/support/StoredRecord.h"

// Records of the 22 classes from arbitrary bytes, behind checksums that are right.
//
// An input is a sequence of records: a byte for the class index, two for the length of the record,
// and the record, which is the version word and the fields. Each is put into a study that has
// objects of every class, takes the place of the object with its key, and then all is reported.

namespace {

using Object = std::unique_ptr<vbPersistent>;

template <class Class>
Object Make(POD* pod) {
  return std::make_unique<Class>(pod);
}

/// By class index.
constexpr std::array kClasses = {
    Make<CInput>,   Make<CAuxiliary>, Make<CTask>,          Make<CDVar>, Make<CDResp>,
    Make<CDCons>,   Make<CDObj>,      Make<CDLink>,         Make<CDEqn>, Make<CApproxModels>,
    Make<CResult>,  Make<CDPoint>,    Make<CIter>,          Make<CDSet>, Make<CGPoint>,
    Make<CDBCtrl>,  Make<CRDOE>,      Make<CDesignControl>, Make<CResp>, Make<CResidual>,
    Make<CMessage>, Make<CRApproxMod>};

constexpr std::size_t kHead = 3;
constexpr std::size_t kMostRecords = 8;

/// Reads the record, stores what was read in the place of the object with that key, and reads it
/// again: it has to be the same.
void PutRecord(POD* pod, std::size_t classIndex, const std::string& record) {
  const Object object = kClasses[classIndex](pod);
  const long address = StoreRecord(pod, object->GetVBClassID(), record);
  if (!Try([&] { object->ReadObject(address); })) return;
  pod->DataFile()->Remove(address);
  if (!Try([&] { object->PutObject(); })) return;
  const std::string stored = StoredRecord(*object);
  const Object again = kClasses[classIndex](pod);
  again->ReadObject(object->ObjectAddress());
  again->PutObject();
  Require(StoredRecord(*again) == stored, object->GetVBClassName() + " changes as it is stored");
}

void ReportDefinitions(POD* pod, std::FILE* stream) {
  TryReport([=] { CDBCtrl::Dump(pod, stream); });
  TryReport([=] { CDesignControl::Dump(pod, stream); });
  TryReport([=] { CGPoint::Dump(pod, stream); });
  TryReport([=] { CInput::Dump(pod, stream); });
  TryReport([=] { CResp::Dump(pod, stream); });
  TryReport([=] { CAuxiliary::Dump(pod, stream); });
}

void ReportTask(POD* pod, std::FILE* stream, int task) {
  TryReport([=] { CTask::Dump(pod, stream, task); });
  TryReport([=] { CDVar::Dump(pod, stream, task); });
  TryReport([=] { CDResp::Dump(pod, stream, task); });
  TryReport([=] { CDCons::Dump(pod, stream, task); });
  TryReport([=] { CDObj::Dump(pod, stream, task); });
  TryReport([=] { CDLink::Dump(pod, stream, task); });
  TryReport([=] { CDEqn::Dump(pod, stream, task); });
  TryReport([=] { CDSet::Dump(pod, stream, task); });
}

void ReportResults(POD* pod, std::FILE* stream, int task) {
  for (const bool all : {false, true}) {
    TryReport([=] { CResult::Dump(pod, stream, task, all); });
    TryReport([=] { CIter::Dump(pod, stream, task, all, 0, 0, all); });
    TryReport([=] { CResidual::Dump(pod, stream, task, 0, all); });
  }
  for (const int point : {0, 1, 2}) {
    TryReport([=] { CDPoint::Dump(pod, stream, task, point); });
  }
  TryReport([=] { CApproxModels::Dump(pod, stream, task, 0); });
  TryReport([=] { CRApproxMod::Dump(pod, stream, task); });
  TryReport([=] { CRDOE::Dump(pod, stream, task); });
  TryReport([=] { CMessage::Dump(pod, stream, task); });
}

struct Record {
  unsigned char classIndex;
  std::string bytes;
};

/// The last one may be cut.
std::vector<Record> Split(const std::string& input) {
  std::vector<Record> records;
  for (std::size_t at = 0; records.size() < kMostRecords && input.size() - at > kHead;) {
    const auto byte = [&](std::size_t n) { return static_cast<unsigned char>(input[at + n]); };
    const std::size_t length = byte(1) + 256U * byte(2);
    records.push_back({byte(0), input.substr(at + kHead, length)});
    at += kHead + records.back().bytes.size();
  }
  return records;
}

std::string Join(const std::vector<Record>& records) {
  std::string input;
  for (const Record& record : records) {
    const std::size_t length = record.bytes.size();
    input += static_cast<char>(record.classIndex);
    input += static_cast<char>(length);
    input += static_cast<char>(length >> 8);
    input += record.bytes;
  }
  return input;
}

void PutRecords(POD* pod, const std::string& input) {
  for (const Record& record : Split(input)) {
    PutRecord(pod, record.classIndex % kClasses.size(), record.bytes);
  }
}

/// One lock for all: taking it anew for each report would be most of the work.
void UseStudy(POD* pod, const std::string& input, std::FILE* nowhere) {
  const CLock lock(pod, 0);
  PutRecords(pod, input);
  ReportDefinitions(pod, nowhere);
  ReportTask(pod, nowhere, kEveryClassTask);
  ReportResults(pod, nowhere, kEveryClassTask);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedStudy& study = FuzzedStudy::Instance();
  const Budget budget(study.Sound().data.size() + study.Sound().index.size() + size);
  study.Write(study.Sound());
  OpenDatabase(study.Base());
  UseStudy(GetPOD(), {reinterpret_cast<const char*>(data), size}, study.Nowhere());
  CloseDatabase();
  study.CheckTraces();
  budget.Check();
  return 0;
}

// ---- Mutation ----

namespace {

/// A version, a count, a length, or half of a real.
void PutWord(std::string& record, Mutator& mutator) {
  const std::size_t words[] = {
      0, 1, 2, 3, mutator.Below(32), mutator.Below(256), 65535, 0x7FFFFFFF, 0xFFFFFFFF, 0xF07F};
  const std::size_t word = words[mutator.Below(std::size(words))];
  const std::size_t place = mutator.Below(4) == 0 ? 0 : mutator.Below(record.size());
  for (std::size_t i = 0; i < 4 && place + i < record.size(); ++i) {
    record[place + i] = static_cast<char>(word >> 8 * i);
  }
}

void MutateOne(std::vector<Record>& records, std::size_t room, Mutator& mutator) {
  const std::size_t n = mutator.Below(records.size());
  Record& record = records[n];
  std::string& bytes = record.bytes;
  switch (mutator.Below(8)) {
    case 0:
      record.classIndex = static_cast<unsigned char>(mutator.Below(kClasses.size()));
      break;
    case 1:
      if (records.size() < kMostRecords) records.push_back(Record(record));
      break;
    case 2:
      if (records.size() > 1) records.erase(records.begin() + static_cast<std::ptrdiff_t>(n));
      break;
    case 3:
    case 4:
      if (!bytes.empty()) PutWord(bytes, mutator);
      break;
    default:
      MutateText(bytes, std::min<std::size_t>(bytes.size() + room, 0xFFFF));
  }
}

std::size_t Mutate(std::vector<Record> records, Mutator& mutator, std::uint8_t* place,
                   std::size_t mostSize) {
  if (records.empty()) records.push_back({});
  for (std::size_t i = mutator.Below(4) + 1; i > 0; --i) {
    const std::size_t size = Join(records).size();
    MutateOne(records, mostSize > size ? mostSize - size : 0, mutator);
  }
  return HandOver(Join(records), place, mostSize);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t mostSize, unsigned seed) {
  Mutator mutator(seed);
  return Mutate(Split({reinterpret_cast<const char*>(data), size}), mutator, data, mostSize);
}

/// Records of both.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t mostSize,
                                                 unsigned seed) {
  std::vector<Record> records = Split({reinterpret_cast<const char*>(data1), size1});
  Mutator mutator(seed);
  for (const Record& record : Split({reinterpret_cast<const char*>(data2), size2})) {
    const auto at = static_cast<std::ptrdiff_t>(mutator.Below(records.size() + 1));
    if (mutator.Below(2) == 0) records.insert(records.begin() + at, record);
  }
  if (records.size() > kMostRecords) records.resize(kMostRecords);
  return Mutate(std::move(records), mutator, out, mostSize);
}

/// The objects of the study, each by itself.
std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  for (const StoredObject& object : FuzzedStudy::Instance().Objects()) {
    const auto index = static_cast<unsigned char>(object.make(nullptr)->GetVBClassIndex());
    seeds.push_back(Join({{index, object.record}}));
  }
  return seeds;
}
