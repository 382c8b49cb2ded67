#include <algorithm>
#include <limits>

#include "definition/Auxiliary.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/walk.h"
#include "task/Task.h"

// What a study contains, counted before a task is made of it.

namespace {

/// Adds the size of a definition. A sum that no integer holds stays at the largest one, and is
/// refused as a study too large to be stored.
void AddTo(int* counter, const vbUINT32& size) {
  const long sum = long{*counter} + static_cast<long>(static_cast<unsigned long>(size));
  *counter = static_cast<int>(std::min<long>(sum, std::numeric_limits<int>::max()));
}

}  // namespace

void CTask::CountInputs(int* independent, int* linked, int* synthetic, int* constant,
                        int* combinatorial, int* discrete, int* constraints, int* objectives,
                        int* random) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  kestdb::VisitInFileOrder<CInput>(Database(), [&](const CInput& input) {
    const auto count = [&input](int* counter) { AddTo(counter, input.m_uSize); };
    // The bounds of a variable that depends on others are constraints.
    const auto countBounds = [&] {
      if (input.m_fLower != -1e30) count(constraints);
      if (input.m_fUpper != 1e30) count(constraints);
    };
    switch (input.m_nType) {
      case 0:
        count(independent);
        break;
      case 1:
        count(linked);
        countBounds();
        break;
      case 2:
        count(synthetic);
        countBounds();
        break;
      case 3:
        count(constant);
        break;
      case 4:
      case 5:
        count(discrete);
        count(independent);
        break;
      case 6:
        count(combinatorial);
        break;
      default:
        Throw<CInvalidType>();
    }
    if (input.m_nObjective != 0) count(objectives);
    const bool parent = input.m_nRandomParam == 0 || input.m_nRandomParam == -1;
    if (input.m_nRandom != 0 && parent) count(random);
    return true;
  });
}
LOG_AND_RETHROW

void CTask::CountResps(int* independent, int* linked, int* synthetic, int* constraints,
                       int* objectives, int* random) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  kestdb::VisitInFileOrder<CResp>(Database(), [&](const CResp& resp) {
    const auto count = [&resp](int* counter) { AddTo(counter, resp.m_uSize); };
    switch (resp.m_nType) {
      case 0:
      case 3:
        count(independent);
        break;
      case 1:
        count(linked);
        break;
      case 2:
        count(synthetic);
        break;
      default:
        Throw<CInvalidType>();
    }
    if (resp.m_nObjective != 0) count(objectives);
    if (resp.m_nConstraint != 0 && resp.m_nHasLower != 0) count(constraints);
    if (resp.m_nConstraint != 0 && resp.m_nHasUpper != 0) count(constraints);
    switch (resp.m_nRandomParam) {
      case 0:
      case -1:
      case -4:
      case -5:
        if (resp.m_nRandom != 0) count(random);
        break;
      default:
        break;
    }
    return true;
  });
}
LOG_AND_RETHROW

void CTask::CountGPoints(int* used, int* run, int* locked) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  CGPoint points(Database());
  if (!points.GetObject()) Throw<CGetObject>();
  const auto isSet = [](const std::vector<vbINT32>& flags, std::size_t i) {
    return i < flags.size() && flags[i] == 1;
  };
  for (std::size_t i = 0; i < points.m_vnUsed.size(); ++i) {
    if (points.m_vnUsed[i] != 1) continue;
    ++*used;
    if (isSet(points.m_vnRun, i)) ++*run;
    if (isSet(points.m_vnLocked, i)) ++*locked;
  }
}
LOG_AND_RETHROW

void CTask::AssociateAux(std::set<int>& links, std::set<int>& eqns, std::set<int>& sets) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  kestdb::VisitInFileOrder<CAuxiliary>(Database(), [&](const CAuxiliary& definition) {
    if (definition.m_nAuxType < 1) Throw<CInvalidType>();
    std::set<int>& kind = definition.m_nAuxType == 1   ? links
                          : definition.m_nAuxType == 2 ? eqns
                                                       : sets;
    kind.insert(static_cast<int>(long{definition.m_nID}));
    return true;
  });
}
LOG_AND_RETHROW
