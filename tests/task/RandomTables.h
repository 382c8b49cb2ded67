#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "results/DPoint.h"
#include "task/DCons.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Study.h"
#include "tests/task/PrintedFaults.h"

enum Distribution { kNormal, kUniform, kLognormal, kWeibull };

/// The tables of task 7, made by hand, whose random entries are checked. Names are the letters of
/// the kind with the position in it: I0 and L0, S0, C0 for variables, R0, LR0 and SR0 for
/// responses.
class RandomTables : public testing::Test {
 protected:
  RandomTables() {
    task.m_nID = vars.m_nID = resps.m_nID = cons.m_nID = 7;
    first.m_nTaskID = 7;
    SetMethod(0, 3);
  }

  /// The task's type and its method; the settings of the other types say the opposite.
  void SetMethod(int type, int method) {
    task.m_nType = type;
    for (vbINT32* const code : Methods()) *code = method <= 2 ? 3 : 0;
    *Methods()[static_cast<std::size_t>(type)] = method;
  }
  std::vector<vbINT32*> Methods() {
    return {&task.m_DGO.m_nRandomMethod, &task.m_RSA.m_nRandomMethod, &task.m_DOE.m_nRandomMethod,
            &task.m_NGO.m_nRandomMethod, &task.m_ANL.m_nRandomMethod};
  }

  /// A variable entry: its random variable, or -1, its parameter there, its kind and lower bound.
  void Var(int random, int parameter, double lower, int kind = vbIndependentVar) {
    switch (kind) {
      case vbIndependentVar:
        Append(vars.m_vfIndLowerIn, vars.m_vstrIndName, "I", lower);
        break;
      case vbLinkedVar:
        Append(vars.m_vfLinkLower, vars.m_vstrLinkName, "L", lower);
        break;
      case vbSyntheticVar:
        Append(vars.m_vfSynLower, vars.m_vstrSynName, "S", lower);
        break;
      default:
        Append(first.m_CDVar, vars.m_vstrConstName, "C", lower);
    }
    vars.m_vnSeq.push_back(Count(vars.m_vnType, kind));
    vars.m_vnType.push_back(kind);
    vars.m_vnRandIndex.push_back(random);
    vars.m_vnRandParam.push_back(parameter);
  }
  /// A sound Normal by its moments, the random variable of that number.
  void NormalVar(int random) {
    vars.m_vnRandDist.push_back(kNormal);
    Var(random, -1, 10.0);
    Var(random, -2, 1.0);
  }

  /// A response entry: its random response, or -1, its parameter there, and its kind.
  void Resp(int random, int parameter, int kind = vbIndependentResp) {
    auto& names = kind == vbIndependentResp ? resps.m_vstrIndName
                  : kind == vbLinkedResp    ? resps.m_vstrLinkName
                                            : resps.m_vstrSynName;
    const char* const letters =
        kind == vbIndependentResp ? "R" : (kind == vbLinkedResp ? "LR" : "SR");
    names.push_back(letters + std::to_string(names.size()));
    resps.m_vnSeq.push_back(Count(resps.m_vnType, kind));
    resps.m_vnType.push_back(kind);
    resps.m_vnRandIndex.push_back(random);
    resps.m_vnRBOParam.push_back(parameter);
  }
  void SystemResp() { Resp(0, -4); }
  /// A sound random response of that number: parent, standard deviation, probability of failure.
  void MeanResp(int random, int parentKind = vbIndependentResp) {
    Resp(random, -1, parentKind);
    Resp(random, -2);
    Resp(random, -3);
  }
  void Constrain(int kind, int position) {
    cons.m_vnSubj.push_back(position);
    cons.m_vnSubjType.push_back(kind);
    cons.m_vfBound.push_back(1.0);
    cons.m_vnMult.push_back(1);
    cons.m_vfScale.push_back(1.0);
  }

  template <class Record>
  void Store(Record record) {
    Record stored(study.Pod());
    stored.Copy(record);
    stored.PutObject();
  }
  void StoreAll() {
    Store(vars);
    Store(resps);
    Store(cons);
    Store(first);
  }

  bool CheckStored(int randomVars = 1, int randomResps = 1) {
    ClearLog();
    return task.CheckRandDVarResp(study.Pod(), randomVars, randomResps);
  }
  bool Check(int randomVars = 1, int randomResps = 1) {
    StoreAll();
    return CheckStored(randomVars, randomResps);
  }
  void ExpectSound() {
    EXPECT_TRUE(Check());
    EXPECT_EQ(PrintedLines(), Faults({}));
  }
  void ExpectFaults(const std::vector<std::vector<std::string>>& faults) {
    EXPECT_FALSE(Check());
    EXPECT_EQ(PrintedLines(), Faults(faults));
  }

  Study study;
  CTask task;  ///< Without a database of its own: the argument is the one that counts.
  CDVar vars{static_cast<POD*>(nullptr)};
  CDResp resps{static_cast<POD*>(nullptr)};
  CDCons cons{static_cast<POD*>(nullptr)};
  CDPoint first{static_cast<POD*>(nullptr)};

 private:
  static long Count(const std::vector<vbINT32>& kinds, int kind) {
    long count = 0;
    for (const long entry : kinds) count += entry == kind;
    return count;
  }
  template <class Value>
  static void Append(std::valarray<Value>& values, std::vector<std::string>& names,
                     const std::string& letter, double value) {
    names.push_back(letter + std::to_string(names.size()));
    std::valarray<Value> longer(values.size() + 1);
    for (std::size_t i = 0; i < values.size(); ++i) longer[i] = values[i];
    longer[values.size()] = value;
    values = longer;
  }
};
