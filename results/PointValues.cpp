#include "results/PointValues.h"

#include "store/KestErr.h"
#include "task/Task.h"
#include "task/TaskTables.h"

const std::string& kestdb::PointValues::NameAt(long position) const {
  return ElementAt(names, position);
}

const double* kestdb::PointValues::ValueAt(long position) const {
  return values.size() > 0 ? &ElementAt(values, position) : nullptr;
}

kestdb::PointValues kestdb::VariablesAt(const CDPoint& point, const CDVar& vars,
                                        const vbINT32& kind) {
  switch (kind) {
    case vbIndependentVar:
      return {"IDVar", vars.m_vstrIndName, point.m_IDVar};
    case vbLinkedVar:
      return {"LDVar", vars.m_vstrLinkName, point.m_LDVar};
    case vbSyntheticVar:
      return {"SDVar", vars.m_vstrSynName, point.m_SDVar};
    case vbConstantVar:
      return {"CDVar", vars.m_vstrConstName, point.m_CDVar};
    default:
      Throw<CInvalidType>();
  }
}

kestdb::PointValues kestdb::ResponsesAt(const CDPoint& point, const CDResp& resps,
                                        const vbINT32& kind) {
  switch (kind) {
    case vbIndependentResp:
      return {"IResp", resps.m_vstrIndName, point.m_IResp};
    case vbLinkedResp:
      return {"LResp", resps.m_vstrLinkName, point.m_LResp};
    case vbSyntheticResp:
      return {"SResp", resps.m_vstrSynName, point.m_SResp};
    default:
      Throw<CInvalidType>();
  }
}
