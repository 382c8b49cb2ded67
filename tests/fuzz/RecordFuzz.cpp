#include <array>
#include <cstdio>
#include <memory>

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

void PutRecords(POD* pod, const std::string& input) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < kMostRecords && input.size() - at > kHead; ++i) {
    const auto byte = [&](std::size_t n) { return static_cast<unsigned char>(input[at + n]); };
    const std::size_t length = byte(1) + 256U * byte(2);
    const std::string record = input.substr(at + kHead, length);
    PutRecord(pod, byte(0) % kClasses.size(), record);
    at += kHead + record.size();
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

/// The objects of the study, each by itself.
std::vector<std::string> Seeds() {
  std::vector<std::string> seeds;
  for (const StoredObject& object : FuzzedStudy::Instance().Objects()) {
    const auto length = static_cast<unsigned>(object.record.size());
    const auto index = static_cast<char>(object.make(nullptr)->GetVBClassIndex());
    seeds.push_back({index, static_cast<char>(length), static_cast<char>(length >> 8)});
    seeds.back() += object.record;
  }
  return seeds;
}
