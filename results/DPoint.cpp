#include "results/DPoint.h"

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/PersistentClassImpl.h"
#include "store/pod.h"
#include "store/podcheck.h"
#include "store/vbdbase.h"
#include "store/walk.h"

template <>
struct kestdb::ClassOf<CDPoint> {
  static constexpr vbINT32 Index = CDPoint::m_nDPOINT_INDX;
  static constexpr vbINT32 Version = CDPoint::m_nDPOINT_VER;
  static constexpr std::array Keys{&CDPoint::m_nTaskID, &CDPoint::m_nPointID};
  static constexpr auto Fields = [](auto& file, auto& point) {
    file(point.m_nTaskID, point.m_nPointID);
    file.since(2, point.m_nPointFlag);
    file(point.m_IDVar, point.m_LDVar, point.m_SDVar, point.m_CDVar);
    file(point.m_IResp, point.m_LResp, point.m_SResp);
  };
};
template class vbPersistentClass<CDPoint>;

void CDPoint::SetDefaultAttributes() {
  m_nTaskID = m_nPointID = m_nPointFlag = 0;
}

void CDPoint::RemoveRespValues() try {
  m_IResp.resize(0);
  m_LResp.resize(0);
  m_SResp.resize(0);
  PutObject();
}
LOG_AND_RETHROW

void CDPoint::RemoveDPoints(POD* pod, int taskID, int firstPoint) try {
  kestdb::RequireIndexed(pod);
  if (firstPoint < 0) Throw<CInvalidArgument>();
  const CLock lock(pod, 0);
  CDPoint point(pod);
  point.m_nTaskID = taskID;
  point.m_nPointID = firstPoint;
  // A key that leads to a freed block ends the removal, as the object that can't be removed.
  const auto find = [pod](CDPoint& next) {
    if (!next.FindObject()) return false;
    return pod->DataFile()->IsFreed(next.ObjectAddress()) || next.GetObject();
  };
  kestdb::RemoveNumbered(point, &CDPoint::m_nPointID, find);
}
LOG_AND_RETHROW
