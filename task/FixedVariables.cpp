#include "task/FixedVariables.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "task/Task.h"

namespace kestdb {

namespace {

void Require(bool holds) {
  if (!holds) Throw<CInvalidArgument>();
}

}  // namespace

FixedVariables::FixedVariables(const std::valarray<bool>& fix, const CDVar& vars)
    : constants_(vars.m_vnConstIDs.size()) {
  const std::size_t count = vars.m_vnIndIDs.size();
  places_.reserve(count);
  long independent = 0;
  auto constant = static_cast<long>(constants_);
  for (std::size_t i = 0; i < count; ++i) {
    places_.push_back(fix[i] ? Place{vbConstantVar, constant++}
                             : Place{vbIndependentVar, independent++});
  }
}

bool FixedVariables::IsFixed(std::size_t position) const {
  return places_[position].kind == vbConstantVar;
}

// -- Columns.

/// Takes the elements of the fixed scalars out.
template <class Column>
void FixedVariables::Drop(Column& independent) const {
  Require(independent.size() == places_.size());
  std::vector<typename Column::value_type> kept;
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (!IsFixed(i)) kept.push_back(independent[i]);
  }
  CopyElements(kept, independent);
}

/// Puts the elements of the fixed scalars behind those of the constants.
template <class Values, class Column>
void FixedVariables::Append(const Values& independent, Column& constant) const {
  Require(independent.size() >= places_.size() && constant.size() == constants_);
  std::vector<typename Column::value_type> all;
  CopyElements(constant, all);
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (IsFixed(i)) all.push_back(independent[i]);
  }
  CopyElements(all, constant);
}

template <class Column, class ConstantColumn>
void FixedVariables::Move(Column& independent, ConstantColumn& constant) const {
  Append(independent, constant);
  Drop(independent);
}

// -- Subjects.

void FixedVariables::Follow(vbINT32& kind, vbINT32& position) const {
  if (kind != vbIndependentVar) return;
  const Place& place = PlaceOf(position);
  kind = place.kind;
  position = place.position;
}

/// An argument of a link is one scalar.
void FixedVariables::FollowLinks(Rows& positions, Rows& kinds) const {
  for (std::size_t row = 0; row < positions.size(); ++row) {
    auto& rowKinds = ElementAt(kinds, static_cast<long>(row));
    for (std::size_t i = 0; i < positions[row].size(); ++i) {
      Follow(ElementAt(rowKinds, static_cast<long>(i)), positions[row][i]);
    }
  }
}

/// A row of arguments of a synthetic function. `room` is how many more a table may take: arrays
/// that are named over and over could make it grow beyond any file.
struct FixedVariables::Arguments {
  explicit Arguments(std::size_t roomLeft) : room(roomLeft) {}

  std::size_t room;
  std::vector<vbINT32> positions;
  std::vector<vbINT32> kinds;
  std::vector<vbINT32> lengths;

  void Add(int kind, long position, long length) {
    Require(room > 0);
    --room;
    kinds.push_back(kind);
    positions.push_back(position);
    lengths.push_back(length);
  }
};

/// An argument may be several scalars of an array. Those that no longer stand together become
/// arguments of their own, so that the row still names the same scalars in the same order.
void FixedVariables::FollowArgument(int kind, long position, long length, Arguments& moved) const {
  if (kind != vbIndependentVar) return moved.Add(kind, position, length);
  Place first = PlaceOf(position);
  if (length < 2) return moved.Add(first.kind, first.position, length);
  long together = 1;
  for (long i = 1; i < length; ++i) {
    const Place& place = PlaceOf(position + i);
    if (place.kind == first.kind) {
      ++together;
      continue;
    }
    moved.Add(first.kind, first.position, together);
    first = place;
    together = 1;
  }
  moved.Add(first.kind, first.position, together);
}

void FixedVariables::FollowFunctions(Rows& positions, Rows& kinds, Rows& lengths) const {
  Require(kinds.size() == positions.size() && lengths.size() == positions.size());
  std::size_t room = std::numeric_limits<int>::max() / 64;
  for (std::size_t row = 0; row < positions.size(); ++row) {
    Require(kinds[row].size() == positions[row].size() &&
            lengths[row].size() == positions[row].size());
    Arguments moved(room);
    for (std::size_t i = 0; i < positions[row].size(); ++i) {
      FollowArgument(static_cast<int>(long{kinds[row][i]}), positions[row][i], lengths[row][i],
                     moved);
    }
    room = moved.room;
    positions[row] = std::move(moved.positions);
    kinds[row] = std::move(moved.kinds);
    lengths[row] = std::move(moved.lengths);
  }
}

// -- Tables.

void FixedVariables::FollowEntries(CDVar& vars) const {
  for (std::size_t i = 0; i < vars.m_vnType.size(); ++i) {
    Follow(vars.m_vnType[i], ElementAt(vars.m_vnSeq, static_cast<long>(i)));
  }
}

/// The numbers of random variables are those of entries, which stay where they are.
void FixedVariables::Apply(CDVar& vars) const {
  FollowEntries(vars);
  FollowLinks(vars.m_mnLinkSubj, vars.m_mnLinkType);
  FollowFunctions(vars.m_mnSynSubj, vars.m_mnSynType, vars.m_mnSynLen);
  constexpr vbINT32 noSet{0};
  Append(std::vector<vbINT32>(places_.size(), noSet), vars.m_vnConstSet);
  Move(vars.m_vnIndIDs, vars.m_vnConstIDs);
  Move(vars.m_vstrIndName, vars.m_vstrConstName);
  // A constant has the bounds that its user gave it.
  Move(vars.m_vfIndLowerIn, vars.m_vfConstLower);
  Move(vars.m_vfIndUpperIn, vars.m_vfConstUpper);
  Drop(vars.m_vfIndLower);
  Drop(vars.m_vfIndUpper);
  Drop(vars.m_vfIndScale);
  Drop(vars.m_vnDiscreteRef);
}

void FixedVariables::Apply(CDResp& resps) const {
  FollowLinks(resps.m_mnLinkSubj, resps.m_mnLinkType);
  FollowFunctions(resps.m_mnSynSubj, resps.m_mnSynType, resps.m_mnSynLen);
}

void FixedVariables::Apply(CDCons& cons, const std::valarray<double>& lower,
                           const std::valarray<double>& upper) const {
  for (std::size_t i = 0; i < cons.m_vnSubj.size(); ++i) {
    const auto row = static_cast<long>(i);
    vbINT32& kind = ElementAt(cons.m_vnSubjType, row);
    if (kind != vbIndependentVar) continue;
    const long position = cons.m_vnSubj[i];
    Follow(kind, cons.m_vnSubj[i]);
    vbFLOAT64& bound = ElementAt(cons.m_vfBound, row);
    const auto at = static_cast<std::size_t>(position);
    const vbINT32& sign = ElementAt(cons.m_vnMult, row);
    if (sign == -1) bound = std::max<double>(bound, lower[at]);
    if (sign == 1) bound = std::min<double>(bound, upper[at]);
  }
}

void FixedVariables::Apply(CDObj& terms) const {
  for (std::size_t i = 0; i < terms.m_vnSubj.size(); ++i) {
    Follow(ElementAt(terms.m_vnSubjType, static_cast<long>(i)), terms.m_vnSubj[i]);
  }
}

void FixedVariables::Apply(std::valarray<double>& independent, std::valarray<double>& constant,
                           const std::valarray<double>& values) const {
  Append(values, constant);
  Drop(independent);
}

}  // namespace kestdb
