#include "tests/fault/processes/Records.h"

#include <valarray>

#include "tests/fault/processes/Ledger.h"

namespace {

bool Same(const std::valarray<double>& one, const std::valarray<double>& other) {
  if (one.size() != other.size()) return false;
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (one[i] != other[i]) return false;
  }
  return true;
}

bool Same(const CDPoint& one, const CDPoint& other) {
  return one.m_nTaskID == other.m_nTaskID && one.m_nPointID == other.m_nPointID &&
         one.m_nPointFlag == other.m_nPointFlag && Same(one.m_IDVar, other.m_IDVar) &&
         Same(one.m_LDVar, other.m_LDVar) && Same(one.m_SDVar, other.m_SDVar) &&
         Same(one.m_CDVar, other.m_CDVar) && Same(one.m_IResp, other.m_IResp) &&
         Same(one.m_LResp, other.m_LResp) && Same(one.m_SResp, other.m_SResp);
}

std::valarray<double> Values(int count, double first) {
  std::valarray<double> values(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = first + static_cast<double>(i);
  return values;
}

int IntOf(const vbINT32& number) {
  return static_cast<int>(long{number});
}

}  // namespace

// ---- Points ----

CDPoint PointOf(int task, int number, int version) {
  CDPoint point(GetPOD());
  point.SetDefaultAttributes();
  point.m_nTaskID = task;
  point.m_nPointID = number;
  point.m_nPointFlag = version;
  const double first = 1000.0 * version + number;
  point.m_IDVar = Values(1 + (7 * version + number) % 40, first);
  point.m_IResp = Values(version % 5, -first);
  return point;
}

bool IsWhole(const CDPoint& point) {
  if (point.m_nPointID < 0 || point.m_nPointFlag < 0) return false;
  return Same(point,
              PointOf(IntOf(point.m_nTaskID), IntOf(point.m_nPointID), IntOf(point.m_nPointFlag)));
}

// ---- Messages and definitions ----

int MessageID(int process, int unit) {
  return kFirstMessage + process * kMostMessages + unit;
}

CMessage MessageOf(int id) {
  CMessage message(GetPOD());
  message.m_nID = id;
  for (int i = 0; i <= id % 4; ++i) message.m_Messages.push_back("Warning " + std::to_string(id));
  return message;
}

bool IsWhole(const CMessage& message) {
  return message.m_Messages == MessageOf(IntOf(message.m_nID)).m_Messages;
}

CAuxiliary AuxiliaryOf(int id) {
  CAuxiliary auxiliary(GetPOD());
  auxiliary.SetDefaultAttributes();
  auxiliary.m_nID = id;
  auxiliary.m_strName = "equation " + std::to_string(id);
  auxiliary.m_nAuxType = 2;
  auxiliary.m_nNumber = id;
  auxiliary.m_strArgs = "a,b";
  auxiliary.m_strEquation = std::string(static_cast<std::size_t>(id % 50), ' ') + "a + b";
  return auxiliary;
}

bool IsWhole(const CAuxiliary& auxiliary) {
  const CAuxiliary expected = AuxiliaryOf(IntOf(auxiliary.m_nID));
  return auxiliary.m_strName == expected.m_strName && auxiliary.m_nAuxType == expected.m_nAuxType &&
         auxiliary.m_nNumber == expected.m_nNumber && auxiliary.m_strArgs == expected.m_strArgs &&
         auxiliary.m_strEquation == expected.m_strEquation;
}

// ---- The counter ----

Counter::Counter() : point_(GetPOD()) {
  point_.SetDefaultAttributes();
  point_.m_nTaskID = kCounterTask;
  stored_ = point_.GetObject();
  if (!stored_) point_.m_IDVar.resize(kMostProcesses);
}

int Counter::Of(int process) const {
  const auto place = static_cast<std::size_t>(process);
  return place < point_.m_IDVar.size() ? static_cast<int>(point_.m_IDVar[place]) : -1;
}

bool Counter::IsWhole() const {
  return point_.m_IDVar.size() == kMostProcesses &&
         static_cast<int>(point_.m_IDVar.sum()) == IntOf(point_.m_nPointFlag);
}

void Counter::Add(int process) {
  point_.m_IDVar[static_cast<std::size_t>(process)] += 1.0;
  point_.m_nPointFlag = point_.m_nPointFlag + 1;
  point_.m_LDVar = Values(IntOf(point_.m_nPointFlag) % 97, 0.0);
}

void Counter::Store() {
  point_.PutObject();
}
