#include "task/DObj.h"

#include <limits>

#include "store/PersistentClassImpl.h"
#include "task/TaskTables.h"

template <>
struct kestdb::ClassOf<CDObj> {
  static constexpr vbINT32 Index = CDObj::m_nDOBJ_INDX;
  static constexpr vbINT32 Version = CDObj::m_nDOBJ_VER;
  static constexpr std::array Keys{&CDObj::m_nID};
  static constexpr auto Fields = [](auto& file, auto& terms) {
    file(terms.m_nID, terms.m_vnSubj, terms.m_vnSubjType, terms.m_vnGoal, terms.m_vnHasWorst);
    file(terms.m_vfWorst, terms.m_vfWeight, terms.m_vfTarget);
  };
};
template class vbPersistentClass<CDObj>;

void CDObj::SetDefaultAttributes() {
  *this = CDObj(Database());
}

double CDObj::Eval(int i, double x) const {
  constexpr double e = std::numeric_limits<double>::epsilon();  // no divisor is 0
  const int goal = static_cast<int>(long{kestdb::ElementAt(m_vnGoal, i)});
  const double weight = kestdb::ElementAt(m_vfWeight, i);
  const double worst = kestdb::ElementAt(m_vfWorst, i);
  if (goal == 2) {
    const double target = kestdb::ElementAt(m_vfTarget, i);
    return weight * (x - target) / (worst - target + e);
  }
  if (goal != 0 && goal != 1) return std::numeric_limits<double>::quiet_NaN();
  const double value = goal == 0 ? x * weight : -weight * x;
  return m_vnSubj.size() < 2 ? value : value / (worst + e);
}
