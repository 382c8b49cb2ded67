#pragma once

#include <gtest/gtest.h>

#include <string>
#include <valarray>
#include <vector>

#include "results/DPoint.h"
#include "task/DCons.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Study.h"

// The tables of task 7, made by hand, from which definitions are made again.

using Ints = std::vector<vbINT32>;
using Floats = std::vector<vbFLOAT64>;

class LoadedTables : public testing::Test {
 protected:
  LoadedTables() { vars.m_nID = resps.m_nID = cons.m_nID = terms.m_nID = point.m_nTaskID = 7; }

  template <class Value, class Element>
  static void Append(std::valarray<Value>& values, const Element& value) {
    std::valarray<Value> longer(values.size() + 1);
    for (std::size_t i = 0; i < values.size(); ++i) longer[i] = values[i];
    longer[values.size()] = value;
    values = longer;
  }

  /// An entry of that kind, the next one in its tables.
  template <class Table>
  static void Entry(Table& table, int kind, std::vector<vbINT32>& ids, int id) {
    table.m_vnSeq.push_back(static_cast<long>(ids.size()));
    table.m_vnType.push_back(kind);
    ids.push_back(id);
  }

  // -- Variables, with their values at the point.

  void Independent(int id, const std::string& name, double value = 0.0, int set = 0) {
    Entry(vars, vbIndependentVar, vars.m_vnIndIDs, id);
    vars.m_vstrIndName.push_back(name);
    Append(vars.m_vfIndLowerIn, -1.0);
    Append(vars.m_vfIndLower, -0.5);
    Append(vars.m_vfIndUpperIn, 1.0);
    Append(vars.m_vfIndUpper, 0.5);
    Append(vars.m_vfIndScale, 0.0);
    vars.m_vnDiscreteRef.push_back(set);
    Append(point.m_IDVar, value);
  }
  void Linked(int id, const std::string& name, int link, const Ints& positions, const Ints& kinds) {
    Entry(vars, vbLinkedVar, vars.m_vnLinkIDs, id);
    vars.m_vstrLinkName.push_back(name);
    Append(vars.m_vfLinkLower, -2.0);
    Append(vars.m_vfLinkUpper, 2.0);
    vars.m_vnLinkRef.push_back(link);
    vars.m_mnLinkSubj.push_back(positions);
    vars.m_mnLinkType.push_back(kinds);
    Append(point.m_LDVar, 0.25);
  }
  void Synthetic(int id, const std::string& name, int function, const Ints& positions,
                 const Ints& kinds, const Ints& lengths) {
    Entry(vars, vbSyntheticVar, vars.m_vnSynIDs, id);
    vars.m_vstrSynName.push_back(name);
    Append(vars.m_vfSynLower, -3.0);
    Append(vars.m_vfSynUpper, 3.0);
    vars.m_vnSynRef.push_back(function);
    vars.m_mnSynSubj.push_back(positions);
    vars.m_mnSynType.push_back(kinds);
    vars.m_mnSynLen.push_back(lengths);
    Append(point.m_SDVar, 0.75);
  }
  void Constant(int id, const std::string& name, double value, int set = 0) {
    Entry(vars, vbConstantVar, vars.m_vnConstIDs, id);
    vars.m_vstrConstName.push_back(name);
    Append(vars.m_vnConstSet, set);
    Append(vars.m_vfConstLower, -4.0);
    Append(vars.m_vfConstUpper, 4.0);
    Append(point.m_CDVar, value);
  }

  // -- Responses.

  void IndependentResp(int id, const std::string& name, int passFail = 0) {
    Entry(resps, vbIndependentResp, resps.m_vnIndIDs, id);
    resps.m_vstrIndName.push_back(name);
    resps.m_vnPassFail.push_back(passFail);
  }
  void LinkedResp(int id, const std::string& name, int link, const Ints& positions,
                  const Ints& kinds) {
    Entry(resps, vbLinkedResp, resps.m_vnLinkIDs, id);
    resps.m_vstrLinkName.push_back(name);
    resps.m_vnLinkRef.push_back(link);
    resps.m_mnLinkSubj.push_back(positions);
    resps.m_mnLinkType.push_back(kinds);
  }
  void SyntheticResp(int id, const std::string& name, int function, const Ints& positions,
                     const Ints& kinds, const Ints& lengths) {
    Entry(resps, vbSyntheticResp, resps.m_vnSynIDs, id);
    resps.m_vstrSynName.push_back(name);
    resps.m_vnSynRef.push_back(function);
    resps.m_mnSynSubj.push_back(positions);
    resps.m_mnSynType.push_back(kinds);
    resps.m_mnSynLen.push_back(lengths);
  }
  /// A constraint on the entry of that kind and position: an upper bound with `side` 1, a lower one
  /// with -1.
  void Constraint(int kind, int position, int side, double bound, double scale) {
    cons.m_vnSubj.push_back(position);
    cons.m_vnSubjType.push_back(kind);
    cons.m_vfBound.push_back(bound);
    cons.m_vnMult.push_back(side);
    cons.m_vfScale.push_back(scale);
  }

  /// An objective term with goal 2, worst value 4, weight 0.5 and target 3.
  void Objective(int kind, int position) {
    terms.m_vnSubj.push_back(position);
    terms.m_vnSubjType.push_back(kind);
    Append(terms.m_vnGoal, 2);
    Append(terms.m_vnHasWorst, 1);
    Append(terms.m_vfWorst, 4.0);
    Append(terms.m_vfWeight, 0.5);
    Append(terms.m_vfTarget, 3.0);
  }
  template <class Definition>
  static void ExpectObjective(const Definition& definition) {
    EXPECT_EQ(definition.m_nObjective, 1);
    EXPECT_EQ(definition.m_nGoal, 2);
    EXPECT_EQ(definition.m_nHasWorst, 1);
    EXPECT_EQ(definition.m_fWorst, 4.0);
    EXPECT_EQ(definition.m_fWeight, 0.5);
    EXPECT_EQ(definition.m_fTarget, 3.0);
  }

  void Store() {
    vars.PutObject();
    resps.PutObject();
    cons.PutObject();
    terms.PutObject();
    point.PutObject();
  }
  template <class Record>
  Record Stored(int id) {
    Record record(study.Pod());
    record.m_nID = id;
    EXPECT_TRUE(record.GetObject()) << record.GetVBClassName() << ' ' << id;
    return record;
  }
  template <class Record>
  void Put(int id) {
    Record record(study.Pod());
    record.m_nID = id;
    record.PutObject();
  }

  Study study;
  CDVar vars{study.Pod()};
  CDResp resps{study.Pod()};
  CDCons cons{study.Pod()};
  CDObj terms{study.Pod()};
  CDPoint point{study.Pod()};
};
