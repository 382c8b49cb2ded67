#include "tests/fault/pairs/ObjectList.h"

#include <stdexcept>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/pod.h"
#include "store/walk.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/fault/FileMap.h"

namespace {

constexpr std::size_t kBlockHeader = 28;
constexpr std::size_t kObjectHeader = 8;
constexpr std::size_t kChecksum = 4;
constexpr std::size_t kVersion = 4;

/// What there is to do with the objects of a class.
struct ClassActions {
  std::size_t keyFields;
  std::unique_ptr<vbPersistent> (*make)(POD* pod, const std::vector<int>& key);
  void (*walk)(POD* pod, std::vector<Served>& served);
};

template <class Class>
void Walk(POD* pod, std::vector<Served>& served) {
  std::vector<std::string> keys;
  kestdb::VisitKeys<Class>(pod, [&](const KSBKey& key) {
    keys.emplace_back(key.ObjectName);
    return true;
  });
  std::size_t next = 0;
  kestdb::VisitInIndexOrder<Class>(pod, [&](const Class& object) {
    auto copy = std::make_unique<Class>(object);
    const std::string own = KeyOf(*copy);
    served.push_back({next < keys.size() ? keys[next] : "", own, std::move(copy)});
    ++next;
    return true;
  });
}

template <class Class, vbINT32 Class::*... Fields>
constexpr ClassActions ActionsOf() {
  return {sizeof...(Fields),
          [](POD* pod, const std::vector<int>& key) -> std::unique_ptr<vbPersistent> {
            auto object = std::make_unique<Class>(pod);
            [[maybe_unused]] std::size_t i = 0;
            if (!key.empty()) ((object.get()->*Fields = key.at(i++)), ...);
            return object;
          },
          &Walk<Class>};
}

/// By class index.
constexpr ClassActions kActions[kClasses] = {
    ActionsOf<CInput, &CInput::m_nID>(),
    ActionsOf<CAuxiliary, &CAuxiliary::m_nID>(),
    ActionsOf<CTask, &CTask::m_nID>(),
    ActionsOf<CDVar, &CDVar::m_nID>(),
    ActionsOf<CDResp, &CDResp::m_nID>(),
    ActionsOf<CDCons, &CDCons::m_nID>(),
    ActionsOf<CDObj, &CDObj::m_nID>(),
    ActionsOf<CDLink, &CDLink::m_nID>(),
    ActionsOf<CDEqn, &CDEqn::m_nID>(),
    ActionsOf<CApproxModels, &CApproxModels::m_nTaskID, &CApproxModels::m_nIter,
              &CApproxModels::m_nResp>(),
    ActionsOf<CResult, &CResult::m_nID>(),
    ActionsOf<CDPoint, &CDPoint::m_nTaskID, &CDPoint::m_nPointID>(),
    ActionsOf<CIter, &CIter::m_nTaskID, &CIter::m_nIter, &CIter::m_nSubIter>(),
    ActionsOf<CDSet, &CDSet::m_nID>(),
    ActionsOf<CGPoint>(),
    ActionsOf<CDBCtrl>(),
    ActionsOf<CRDOE, &CRDOE::m_nTaskID>(),
    ActionsOf<CDesignControl>(),
    ActionsOf<CResp, &CResp::m_nID>(),
    ActionsOf<CResidual, &CResidual::m_nTaskID, &CResidual::m_nResp>(),
    ActionsOf<CMessage, &CMessage::m_nID>(),
    ActionsOf<CRApproxMod, &CRApproxMod::m_nTaskID>(),
};

const ClassActions& ActionsFor(long classID) {
  const long index = classID / 1000 - 1;
  if (index < 0 || index >= kClasses || ClassIDOf(index) != classID) {
    throw std::logic_error("no such class");
  }
  return kActions[index];
}

ListedObject ObjectAt(const std::string& data, std::size_t block) {
  ListedObject object;
  object.block = block;
  object.length = NumberAt(data, block + 4);
  const std::size_t start = block + kBlockHeader;
  object.classID = static_cast<long>(NumberAt(data, start));
  object.record =
      data.substr(start + kObjectHeader, object.length - kBlockHeader - kObjectHeader - kChecksum);
  for (std::size_t i = 0; i < ActionsFor(object.classID).keyFields; ++i) {
    const auto field = static_cast<std::int32_t>(NumberAt(object.record, kVersion + 4 * i));
    object.key.push_back(field);
  }
  return object;
}

}  // namespace

std::vector<ListedObject> ObjectsIn(const std::string& data) {
  std::vector<ListedObject> objects;
  const FileMap map(data, 0);
  for (const std::size_t block : map.Blocks()) {
    if (data[block + 8] == 'N') objects.push_back(ObjectAt(data, block));
  }
  return objects;
}

std::string NameOf(const ListedObject& object) {
  std::string name = NewObject(nullptr, object.classID)->GetVBClassName();
  for (const int field : object.key) name += ' ' + std::to_string(field);
  return name;
}

std::unique_ptr<vbPersistent> NewObject(POD* pod, const ListedObject& object) {
  return ActionsFor(object.classID).make(pod, object.key);
}

std::unique_ptr<vbPersistent> NewObject(POD* pod, long classID) {
  return ActionsFor(classID).make(pod, {});
}

std::string KeyOf(vbPersistent& object) {
  char text[64];
  return object.MakeKey(text);
}

void WalkInIndexOrder(POD* pod, long classID, std::vector<Served>& served) {
  ActionsFor(classID).walk(pod, served);
}
