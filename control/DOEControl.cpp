#include "control/DOEControl.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "control/ControlBlockImpl.h"
#include "definition/GPoint.h"
#include "environment/Logging.h"
#include "store/KestErr.h"
#include "store/assertion.h"

template class vbControlBlock<CDOEControl>;

// The block, its options, and the number of points of each design. The rules: DOEControlCheck.cpp.

int CDOEControl::GetOption() const {
  if (m_nMethod < 0 || m_nMethod >= m_vnOptions.size()) Throw<CInvalidArgument>();
  return static_cast<int>(long{m_vnOptions[static_cast<std::size_t>(long{m_nMethod})]});
}

void CDOEControl::SetOptions(const std::vector<int>& vn) {
  KESTDB_ASSERT(m_vnOptions.size() >= vn.size(), "m_vnOptions.size() >= vn.size()");
  std::copy(vn.begin(), vn.end(), m_vnOptions.begin());
}

void CDOEControl::SetGUIIndices(const std::vector<int>& vn) {
  KESTDB_ASSERT(m_vnGUIIndices.size() >= vn.size(), "m_vnGUIIndices.size() >= vn.size()");
  std::copy(vn.begin(), vn.end(), m_vnGUIIndices.begin());
}

namespace {

constexpr int kMost = std::numeric_limits<int>::max();

int Cut(double value) {
  return static_cast<int>(std::clamp<double>(value, -kMost, kMost));
}

/// 2 to the power `n`, in floating point and cut to an integer.
double PowerOfTwo(long n) {
  return Cut(std::exp2(static_cast<double>(n)));
}

/// Kept: every factor is an integer division of its own, so that this is the number of
/// combinations only when each divides evenly: P(4, 2) is 4.
double RunningProduct(long n, long k) {
  double product = 1;
  for (long i = 1; i <= k; ++i) product *= static_cast<double>((n - i + 1) / i);
  return product;
}

/// Points with k variables moved at a time.
double MovedAtATime(long n, long k) {
  return PowerOfTwo(k) * RunningProduct(n, k);
}

int CountBoxBehnken(long n, long o) {
  if (o <= 11) {
    return Cut(PowerOfTwo(o) * (o < 1 ? static_cast<double>(n) : RunningProduct(n, o)));
  }
  if (o >= 123) return Cut(MovedAtATime(n, 1) + MovedAtATime(n, 2) + MovedAtATime(n, 3));
  const long a = o / 10;
  const long b = o % 10;
  if (a > b) return 0;
  return Cut(MovedAtATime(n, a) + (a == b ? 0 : MovedAtATime(n, b)));
}

/// Koshal and Rechtschaffner: linear terms, and what the option adds to them.
int CountTerms(long n, long o) {
  const double pairs = o == 11 || o == 21 ? static_cast<double>(n * (n - 1) / 2) : 0;
  const long squares = o == 20 || o == 21 ? n : 0;
  return Cut(static_cast<double>(n + 1 + squares) + pairs);
}

int CountUserPoints(POD* pod) {
  CGPoint points(pod);
  if (!points.GetObject()) Throw<CGetObject>();
  return points.NumUsedGPoints();
}

}  // namespace

int CDOEControl::GetDOEPointCnt(POD* pod, int nVars) const try {
  const long n = nVars;
  if (m_nMethod < 0 || m_nMethod > 13) {
    LError("(Design Control): Invalid DOE design/method.\n");
    return -1;
  }
  const int o = GetOption();
  switch (m_nMethod) {
    case 0:
      return Cut(PowerOfTwo(n - o));
    case 1:
      return n == 1 ? 3 : Cut(PowerOfTwo(n - o) + static_cast<double>(2 * n + 1));
    case 2:
      return CountBoxBehnken(n, o);
    case 4:
      return Cut(static_cast<double>(n) + (o >= 0 ? PowerOfTwo(n - o) : PowerOfTwo(n) - 1));
    case 5:
    case 6:
      return CountTerms(n, o);
    case 7:
      return Cut(static_cast<double>(o / 10 - 100 * n));
    case 8:
      return o < 9 ? 3 : o;
    case 9:
      return Cut(static_cast<double>(n + 1));
    case 11:
      return CountUserPoints(pod);
    default:  // Plackett-Burman, random and Latin designs
      return o;
  }
}
LOG_AND_RETHROW
