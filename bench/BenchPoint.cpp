#include "bench/BenchPoint.h"

#include "store/PersistentClassImpl.h"

template <>
struct kestdb::ClassOf<BenchPoint> {
  static constexpr vbINT32 Index = BenchPoint::m_nBENCH_INDX;
  static constexpr vbINT32 Version = BenchPoint::m_nBENCH_VER;
  static constexpr std::array Keys{&BenchPoint::m_nTask, &BenchPoint::m_nPoint};
  static constexpr auto Fields = [](auto& file, auto& point) {
    file(point.m_nTask, point.m_nPoint, point.m_nKind, point.m_nStatus, point.m_nRun);
    file(point.m_vfVariables, point.m_vfResponses);
  };
};
template class vbPersistentClass<BenchPoint>;

BenchPoint BenchPoint::Made(POD* pod, int number) {
  BenchPoint point(pod);
  point.m_nTask = 1;
  point.m_nPoint = number;
  point.m_vfVariables.assign(20, vbFLOAT64(number));
  point.m_vfResponses.assign(10, vbFLOAT64(-number));
  return point;
}
