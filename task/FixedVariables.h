// Private to the library, not installed.
#pragma once

#include <cstddef>
#include <valarray>
#include <vector>

#include "store/KestErr.h"
#include "store/vbscalar.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/TaskTables.h"

// The tables of a task some of whose independent variables become constants.

namespace kestdb {

/// Which independent scalars are fixed, and where all of them go: the fixed ones behind the
/// constants, in their order, the others to the places that become free before them. All other
/// entries keep their positions.
///
/// Tables that don't fit each other THROW CInvalidArgument.
class FixedVariables {
 public:
  /// REQUIRES a flag in `fix` for each independent scalar of `vars`, the table that is to change.
  FixedVariables(const std::valarray<bool>& fix, const CDVar& vars);

  void Apply(CDVar& vars) const;
  void Apply(CDResp& resps) const;
  /// REQUIRES a lower and an upper bound for each independent scalar: constraints on them become no
  /// wider than those.
  void Apply(CDCons& cons, const std::valarray<double>& lower,
             const std::valarray<double>& upper) const;
  void Apply(CDObj& terms) const;
  /// Moves the values of the fixed scalars of a point, whose values are `values` from now on.
  void Apply(std::valarray<double>& independent, std::valarray<double>& constant,
             const std::valarray<double>& values) const;

 private:
  using Rows = std::vector<std::vector<vbINT32>>;
  struct Place {
    int kind;
    long position;
  };
  struct Arguments;

  /// Where an independent scalar goes.
  const Place& PlaceOf(long position) const { return ElementAt(places_, position); }
  bool IsFixed(std::size_t position) const;
  void Follow(vbINT32& kind, vbINT32& position) const;
  void FollowEntries(CDVar& vars) const;
  void FollowLinks(Rows& positions, Rows& kinds) const;
  void FollowFunctions(Rows& positions, Rows& kinds, Rows& lengths) const;
  void FollowArgument(int kind, long position, long length, Arguments& moved) const;

  template <class Column>
  void Drop(Column& independent) const;
  template <class Values, class Column>
  void Append(const Values& independent, Column& constant) const;
  template <class Column, class ConstantColumn>
  void Move(Column& independent, ConstantColumn& constant) const;

  std::vector<Place> places_;
  std::size_t constants_;
};

}  // namespace kestdb
