#include "tests/fault/EveryClassStudy.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/DBI_IO.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/StoredRecord.h"

namespace {

/// Small nodes: fewer bytes have the same things to say.
constexpr int kOrder = 4;
constexpr int kTask = 1;

/// Stores objects and keeps what there is to know of them.
class Storer {
 public:
  Storer(POD* pod, std::vector<StoredObject>& objects) : pod_(pod), objects_(objects) {}

  /// An object of a class, by what sets its key and what fills its other fields.
  template <class Class, class Key, class Fields>
  void Store(Key key, Fields fields) {
    Class object(pod_);
    key(object);
    char text[64];
    const std::string name = Class::m_strCLASS_NAME + object.MakeKey(text);
    fields(object);
    object.PutObject();
    const std::size_t body = static_cast<std::size_t>(long{object.ObjectAddress()});
    const auto make = [key](POD* pod) {
      auto made = std::make_unique<Class>(pod);
      key(*made);
      return std::unique_ptr<vbPersistent>(std::move(made));
    };
    objects_.push_back({name, make, body - pod_->DataFile()->VBHeaderSize(),
                        pod_->DataFile()->VBLength(object.ObjectAddress()), StoredRecord(object)});
  }

  /// One that is the only one of its class.
  template <class Class, class Fields>
  void StoreSingleton(Fields fields) {
    Store<Class>([](Class&) {}, fields);
  }

  /// One whose key is a single number.
  template <class Class, class Fields>
  void StoreNumbered(vbINT32 Class::*number, int value, Fields fields) {
    Store<Class>([=](Class& object) { object.*number = value; }, fields);
  }

 private:
  POD* pod_;
  std::vector<StoredObject>& objects_;
};

void StoreDefinition(Storer& storer) {
  storer.StoreSingleton<CDBCtrl>([](CDBCtrl& control) {
    control.NextInputID = 4;
    control.NextRespID = 3;
    control.TaskIDs = {kTask};
  });
  storer.StoreSingleton<CDesignControl>([](CDesignControl& control) {
    control.m_strTitle = "Beam";
    control.m_vnCheckTasks = {2, 5};
  });
  storer.StoreSingleton<CGPoint>([](CGPoint& points) {
    points.m_vnUsed = points.m_vnRun = points.m_vnLocked = {1, 0};
    points.m_vDVars = {{0.5, -1e30}, {2.0, 3.0}};
    points.m_vResps = {{1.25, 1e30}};
  });
  for (const int id : {1, 2, 3}) {
    storer.StoreNumbered<CInput>(&CInput::m_nID, id, [id](CInput& input) {
      input.m_strName = "width " + std::to_string(id);
      input.m_vnArg = input.m_vnIdx = input.m_vnLength = {-1, 3};
      input.m_fInitial = 0.1 * id;
    });
    storer.StoreNumbered<CResp>(&CResp::m_nID, id, [id](CResp& resp) {
      resp.m_strName = "stress";
      resp.m_fUpper = 250.0 * id;
    });
  }
  storer.StoreNumbered<CAuxiliary>(&CAuxiliary::m_nID, 1, [](CAuxiliary& definition) {
    definition.m_nAuxType = 2;
    definition.m_strArgs = "a,b";
    definition.m_strEquation = "a*b";
    definition.m_vfCoef = {1.0, -0.5};
    definition.m_vstrArgNames = {"", "b"};
  });
}

void StoreVariables(Storer& storer) {
  storer.StoreNumbered<CTask>(&CTask::m_nID, kTask, [](CTask& task) {
    task.m_strTitle = "Beam";
    task.m_vnAnalyzeFlags = task.m_vnPointLocked = {1, 0};
    task.m_strCreated = "Mon Jan  2 2006";
  });
  storer.StoreNumbered<CDVar>(&CDVar::m_nID, kTask, [](CDVar& vars) {
    vars.m_vnSeq = {0, 1};
    vars.m_vnIndIDs = {1, 3};
    vars.m_vfIndLower = {-1.0, 0.25};
    vars.m_vstrIndName = {"width", "height"};
    vars.m_mnLinkSubj = {{0, 1}, {}};
  });
  storer.StoreNumbered<CDResp>(&CDResp::m_nID, kTask, [](CDResp& resps) {
    resps.m_vnIndIDs = {1};
    resps.m_vstrIndName = {"stress"};
    resps.m_mnSynSubj = {{1}};
  });
}

void StoreGoals(Storer& storer) {
  storer.StoreNumbered<CDCons>(&CDCons::m_nID, kTask, [](CDCons& cons) {
    cons.m_vnSubj = {0};
    cons.m_vfBound = {250.0};
  });
  storer.StoreNumbered<CDObj>(&CDObj::m_nID, kTask, [](CDObj& terms) {
    terms.m_vnSubj = {0};
    terms.m_vfWeight = {1.0};
  });
  storer.StoreNumbered<CDLink>(&CDLink::m_nID, kTask, [](CDLink& links) {
    links.m_vstrName = {"same"};
    links.m_mdCoef = {{0.0, 1.0}};
  });
  storer.StoreNumbered<CDEqn>(&CDEqn::m_nID, kTask, [](CDEqn& functions) {
    functions.m_vnAuxID = {1};
    functions.m_vstrEquation = {"a*b"};
  });
  storer.StoreNumbered<CDSet>(&CDSet::m_nID, kTask, [](CDSet& sets) {
    sets.m_vstrName = {"sizes"};
    sets.m_mdValues = {{1.0, 1.5}};
  });
}

void StorePoints(Storer& storer) {
  storer.StoreNumbered<CResult>(&CResult::m_nID, kTask, [](CResult& result) {
    result.m_strStarted = "Mon";
    result.m_EngineArray2 = {0.1};
  });
  for (const int point : {0, 1, 2}) {
    storer.Store<CDPoint>(
        [point](CDPoint& object) {
          object.m_nTaskID = kTask;
          object.m_nPointID = point;
        },
        [point](CDPoint& object) {
          object.m_IDVar = {0.5, 1.0 + point};
          object.m_IResp = {200.0};
        });
  }
  storer.Store<CIter>([](CIter& iter) { iter.m_nTaskID = kTask; },
                      [](CIter& iter) {
                        iter.m_nBestPoint = 2;
                        iter.m_ParetoPoints = {0, 2};
                        iter.m_ParetoValues = {0.25};
                      });
}

void StoreModels(Storer& storer) {
  storer.Store<CApproxModels>([](CApproxModels& model) { model.m_nTaskID = kTask; },
                              [](CApproxModels& model) {
                                model.m_Model = {0, 1};
                                model.m_Coefficients = {3.0, -2.0};
                              });
  storer.StoreNumbered<CRDOE>(&CRDOE::m_nTaskID, kTask, [](CRDOE& design) {
    design.m_Points = {0, 1};
    design.m_fLogDet = 1.5;
  });
  storer.Store<CResidual>([](CResidual& residual) { residual.m_nTaskID = kTask; },
                          [](CResidual& residual) {
                            residual.m_Predicted = {1.0, 2.0};
                            residual.m_fR2 = 0.9;
                          });
  storer.StoreNumbered<CRApproxMod>(&CRApproxMod::m_nTaskID, kTask, [](CRApproxMod& model) {
    model.m_nRowMod = 1;
    model.m_Model = {1};
    model.m_Coeff = {0.75};
  });
  for (const int task : {1, 2}) {
    storer.StoreNumbered<CMessage>(&CMessage::m_nID, task, [](CMessage& messages) {
      messages.m_Messages = {"ERROR: out of range", ""};
    });
  }
}

/// Some of the objects, by name, and whether they go for good.
struct Freeing {
  const char* name;
  bool forGood;
};
constexpr Freeing kFreed[] = {{"CInput          2", true},
                              {"CResp          1", false},
                              {"CResp          2", true},
                              {"CDPoint          1          1", false},
                              {"CMessage          2", true}};

void Free(POD* pod, const Freeing& freeing, std::vector<StoredObject>& objects,
          std::vector<StoredObject>& freed) {
  const auto is = [&](const StoredObject& object) { return object.name == freeing.name; };
  const auto found = std::find_if(objects.begin(), objects.end(), is);
  if (found == objects.end()) throw std::logic_error("no such object");
  const auto object = found->make(pod);
  if (!(freeing.forGood ? object->RemoveObject() : object->DeleteObject())) {
    throw std::logic_error("nothing to free");
  }
  freed.push_back(std::move(*found));
  objects.erase(found);
}

}  // namespace

EveryClassStudy::EveryClassStudy() {
  const std::string data = folder_ / "every.ksb";
  const std::string index = folder_ / "every.kx";
  KSBKey key;
  pPOD = new POD(data);
  pPOD->Open(data, index, key, kOrder, vbReadWrite, 1, 0, 25);
  {
    const CLock lock(pPOD, 0);
    Storer storer(pPOD, objects_);
    StoreDefinition(storer);
    StoreVariables(storer);
    StoreGoals(storer);
    StorePoints(storer);
    StoreModels(storer);
    for (const Freeing& freeing : kFreed) Free(pPOD, freeing, objects_, freed_);
  }
  CloseDatabase();
  files_ = {ReadBytes(data), ReadBytes(index)};
}
