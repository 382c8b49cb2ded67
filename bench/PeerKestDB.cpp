#include <algorithm>
#include <optional>
#include <stdexcept>

#include "bench/PeerStore.h"
#include "index/KSBKey.h"
#include "index/vbtree.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "store/DBI_IO.h"
#include "store/pod.h"

namespace {

constexpr int kTask = 1;

CDPoint ToPoint(const PeerRecord& record) {
  CDPoint point(GetPOD());
  point.m_nTaskID = kTask;
  point.m_nPointID = record.number;
  point.m_nPointFlag = 0;
  point.m_IDVar = std::valarray<double>(record.variables.data(), record.variables.size());
  point.m_IResp = std::valarray<double>(record.responses.data(), record.responses.size());
  return point;
}

PeerRecord FromPoint(const CDPoint& point) {
  PeerRecord record;
  if (point.m_IDVar.size() != record.variables.size() ||
      point.m_IResp.size() != record.responses.size()) {
    throw std::runtime_error("a point of another size");
  }
  record.number = static_cast<int>(point.m_nPointID);
  std::copy(std::begin(point.m_IDVar), std::end(point.m_IDVar), record.variables.begin());
  std::copy(std::begin(point.m_IResp), std::end(point.m_IResp), record.responses.begin());
  return record;
}

class KestDBPeer : public PeerStore {
 public:
  /// A lock that is still held goes while another failure is on its way, and throws nothing then.
  ~KestDBPeer() noexcept override = default;

  void Open(const std::string& folder) override { OpenDatabase(folder + "/study"); }
  void Close() override { CloseDatabase(); }

  void Begin(bool) override { lock_.emplace(GetPOD(), 0); }
  void End() override {
    lock_->UnLock();
    lock_.reset();
  }

  void Store(const PeerRecord& record) override { ToPoint(record).WriteObject(false); }
  void Update(const PeerRecord& record) override { ToPoint(record).PutObject(); }
  void Remove(int number) override {
    CDPoint point = Keyed(number);
    if (!point.RemoveObject()) throw std::runtime_error("no such point");
  }
  PeerRecord Find(int number) override {
    CDPoint point = Keyed(number);
    if (!point.GetObject()) throw std::runtime_error("no such point");
    return FromPoint(point);
  }

  void VisitInKeyOrder(const std::function<void(const PeerRecord&)>& visit) override {
    vBtree& tree = *GetPOD()->Index(CDPoint::m_nDPOINT_INDX);
    CDPoint point(GetPOD());
    KSBKey key;
    KSBKey work;
    for (bool found = tree.FindFirst(key, true); found; found = tree.FindNext(key, work, true)) {
      point.ReadObject(key.ObjectAddress);
      visit(FromPoint(point));
    }
  }

  void Compact(const std::string& folder) override {
    KFileRebuild(folder + "/study.ksb");
    KIndexRebuildCheck(folder + "/study", true);
  }

  void Check(const std::string& folder) override {
    KFileCheck(folder + "/study.ksb");
    KIndexRebuildCheck(folder + "/study", false);
  }

 private:
  static CDPoint Keyed(int number) {
    CDPoint point(GetPOD());
    point.m_nTaskID = kTask;
    point.m_nPointID = number;
    return point;
  }

  std::optional<CLock> lock_;
};

}  // namespace

std::unique_ptr<PeerStore> MakeKestDBPeer() {
  return std::make_unique<KestDBPeer>();
}
