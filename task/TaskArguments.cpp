#include "task/TaskArguments.h"

#include <algorithm>

#include "environment/Logging.h"
#include "maintenance/Lock.h"
#include "store/assertion.h"
#include "task/Task.h"

namespace kestdb {

int KindOfInput(long type) {
  switch (type) {
    case 0:
    case 4:
    case 5:
      return vbIndependentVar;
    case 1:
      return vbLinkedVar;
    case 2:
      return vbSyntheticVar;
    case 3:
    case 6:
      return vbConstantVar;
    default:
      return 0;
  }
}

int KindOfResp(long type) {
  switch (type) {
    case 0:
    case 3:
      return vbIndependentResp;
    case 1:
      return vbLinkedResp;
    case 2:
      return vbSyntheticResp;
    default:
      return 0;
  }
}

ArgumentDefinition AsArgument(const CInput& input) {
  const auto size = static_cast<long>(static_cast<unsigned long>(input.m_uSize));
  return {input.m_nType, size, KindOfInput(input.m_nType), true, input.m_strName};
}

ArgumentDefinition AsArgument(const CResp& resp) {
  const auto size = static_cast<long>(static_cast<unsigned long>(resp.m_uSize));
  constexpr int passFail = 3;  // an entry like any independent one, but no argument
  const int kind = resp.m_nType == passFail ? 0 : KindOfResp(resp.m_nType);
  return {resp.m_nType, size, kind, false, resp.m_strName};
}

PositionTable::PositionTable(const std::vector<vbINT32>& ids) {
  positions_.reserve(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    positions_.try_emplace(static_cast<int>(long{ids[i]}), static_cast<long>(i));
  }
}

long PositionTable::Find(int id) const {
  const auto place = positions_.find(id);
  if (place == positions_.end()) Throw<CObjectNotFound>();
  return place->second;
}

void RequireKnownType(const ArgumentDefinition& argument) {
  if (argument.kind != 0) return;
  LError(argument.isInput ? "Invalid Input object type!\n" : "Invalid Resp object type!\n");
  Throw<CInvalidType>();
}

void RequireLength(const ArgumentOwner& owner, const ArgumentList& list, std::size_t i,
                   const ArgumentDefinition& argument) {
  const long index = list.Index(i);
  const long length = list.Length(i);
  if (index >= 0 && length >= 0 && index + length <= argument.size) return;
  LError("Invalid synthetic function argument starting index/length combination\n");
  if (owner.kind == vbSyntheticVar) {
    LPrint("     Synthetic design variable %s\n", owner.name.c_str());
  } else if (owner.kind == vbSyntheticResp) {
    LPrint("     Synthetic response variable %s\n", owner.name.c_str());
  }
  LPrint("     Input argument %s has total length of %d\n", argument.name.c_str(),
         static_cast<int>(argument.size));
  LPrint("     but is specified with starting index %d and length %d\n", static_cast<int>(index),
         static_cast<int>(length));
  LPrint("     This starting index/length combination will exceed the total\n");
  LPrint("     length of the argument\n");
  Throw<CIndexError>();
}

ArgumentDefinition ArgumentResolver::Read(int id) {
  return id < 0 ? AsArgument(inputs_.Get(-long{id})) : AsArgument(resps_.Get(id));
}

ArgumentRow ArgumentResolver::Resolve(const ArgumentOwner& owner, const ArgumentList& list,
                                      const std::vector<ArgumentPass>& passes) {
  ArgumentRow row(list.ids.size());
  for (const ArgumentPass& pass : passes) {
    for (std::size_t i = 0; i < list.ids.size(); ++i) {
      if (list.ids[i] == 0) continue;
      ResolveArgument(
          owner, list, i, Read(list.ids[i]), pass.type, pass.kind,
          [&pass](int id) { return pass.table.Find(id); }, row);
    }
  }
  return row;
}

}  // namespace kestdb

void CTask::ID2Index(int nOwner, std::string strName, std::vector<int>& vnID, int nType, int nCode,
                     std::vector<int>& vnArg, std::vector<int>& vnIdx, std::vector<int>& vnLen,
                     std::vector<int>& vnOutIdx, std::vector<int>& vnOutType,
                     std::vector<int>& vnOutLen) try {
  if (Database() == nullptr) Throw<CNoDatabaseOpen>();
  const CLock lock(Database(), 0);
  kestdb::DefinitionReader<CInput> inputs(Database());
  kestdb::DefinitionReader<CResp> resps(Database());
  const kestdb::ArgumentList list{vnArg, vnIdx, vnLen};
  kestdb::ArgumentRow row(vnArg.size());
  // What earlier passes resolved stays.
  vnOutIdx.resize(vnArg.size());
  vnOutType.resize(vnArg.size());
  vnOutLen.resize(vnArg.size());
  row.positions.swap(vnOutIdx);
  row.kinds.swap(vnOutType);
  row.lengths.swap(vnOutLen);
  const auto positionOf = [&vnID](int id) {
    const auto where = std::find(vnID.begin(), vnID.end(), id);
    KESTDB_ASSERT(where != vnID.end(), "where != vnID.end()");
    return where - vnID.begin();
  };
  for (std::size_t i = 0; i < vnArg.size(); ++i) {
    if (vnArg[i] == 0) continue;
    const auto argument = vnArg[i] < 0 ? kestdb::AsArgument(inputs.Get(-long{vnArg[i]}))
                                       : kestdb::AsArgument(resps.Get(vnArg[i]));
    kestdb::ResolveArgument({nOwner, strName}, list, i, argument, nType, nCode, positionOf, row);
  }
  row.positions.swap(vnOutIdx);
  row.kinds.swap(vnOutType);
  row.lengths.swap(vnOutLen);
}
LOG_AND_RETHROW
