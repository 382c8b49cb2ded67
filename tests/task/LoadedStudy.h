#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "tests/definition/InputStudy.h"
#include "tests/support/StoredRecord.h"
#include "tests/task/MakeStudy.h"

// A study's definitions by ID, to compare those that come back from a task with what it was made
// of, and the records of two tasks.

struct StudyDefinitions {
  std::map<int, CInput> inputs;
  std::map<int, CResp> resps;
  std::map<int, CAuxiliary> auxiliaries;

  explicit StudyDefinitions(POD* pod) {
    std::vector<int> ids;
    CInput::GetAllInputIDs(pod, ids);
    Read(pod, ids, inputs);
    CResp::GetAllRespIDs(pod, ids);
    Read(pod, ids, resps);
    for (const int type : {1, 2, 4}) {
      CAuxiliary(pod).GetAllIDs(type, ids);
      Read(pod, ids, auxiliaries);
    }
  }

  // What a task doesn't keep of any study.

  /// Definitions are numbered, not their elements.
  void RenumberInputs(const std::vector<int>& idsInTransferOrder) {
    Renumber(inputs, idsInTransferOrder);
  }
  void RenumberResps(const std::vector<int>& idsInTransferOrder) {
    Renumber(resps, idsInTransferOrder);
  }
  /// A constant's bounds, also where it is combinatorial and they pick members of its set.
  void LoseBounds(int constant) {
    inputs.at(constant).m_fLower = -1e30;
    inputs.at(constant).m_fUpper = 1e30;
  }
  /// The constraint flag of a response without a bound in force, and a bound that isn't.
  void LoseConstraint(int resp) {
    CResp& lost = resps.at(resp);
    lost.m_nConstraint = lost.m_nHasLower = lost.m_nHasUpper = 0;
    lost.m_fLower = -1e30;
    lost.m_fUpper = 1e30;
  }
  template <class Definition>
  static void LoseObjective(Definition& definition) {
    definition.m_nObjective = definition.m_nGoal = definition.m_nHasWorst = 0;
    definition.m_fWorst = definition.m_fTarget = 0.0;
    definition.m_fWeight = 1.0;
  }
  /// A link's argument names.
  void NumberAuxiliary(int id, int number, const Names& argumentNames = {}) {
    auxiliaries.at(id).m_nNumber = number;
    auxiliaries.at(id).m_vstrArgNames = argumentNames;
  }

 private:
  template <class Definition>
  static void Read(POD* pod, const std::vector<int>& ids, std::map<int, Definition>& definitions) {
    for (const int id : ids) {
      Definition definition(pod);
      definition.m_nID = id;
      EXPECT_TRUE(definition.GetObject());
      definitions.emplace(id, definition);
    }
  }
  template <class Definition>
  static void Renumber(std::map<int, Definition>& definitions, const std::vector<int>& ids) {
    unsigned long number = 0;
    for (const int id : ids) definitions.at(id).m_uIndex = ++number;
  }
};

inline void ExpectSameFields(const CResp& resp, const CResp& expected) {
  EXPECT_EQ(resp.m_nID, expected.m_nID);
  EXPECT_EQ(resp.m_strName, expected.m_strName);
  EXPECT_EQ(resp.m_strText, expected.m_strText);
  EXPECT_EQ(resp.m_nConstraint, expected.m_nConstraint);
  EXPECT_EQ(resp.m_nObjective, expected.m_nObjective);
  EXPECT_EQ(resp.m_uIndex, expected.m_uIndex);
  EXPECT_EQ(resp.m_uSize, expected.m_uSize);
  EXPECT_EQ(resp.m_nType, expected.m_nType);
  EXPECT_EQ(resp.m_nAuxID, expected.m_nAuxID);
  EXPECT_EQ(resp.m_vnArg, expected.m_vnArg);
  EXPECT_EQ(resp.m_vnIdx, expected.m_vnIdx);
  EXPECT_EQ(resp.m_vnLength, expected.m_vnLength);
  EXPECT_EQ(resp.m_nHasLower, expected.m_nHasLower);
  EXPECT_EQ(resp.m_fLower, expected.m_fLower);
  EXPECT_EQ(resp.m_nHasLowerScale, expected.m_nHasLowerScale);
  EXPECT_EQ(resp.m_fLowerScale, expected.m_fLowerScale);
  EXPECT_EQ(resp.m_nHasUpper, expected.m_nHasUpper);
  EXPECT_EQ(resp.m_fUpper, expected.m_fUpper);
  EXPECT_EQ(resp.m_nHasUpperScale, expected.m_nHasUpperScale);
  EXPECT_EQ(resp.m_fUpperScale, expected.m_fUpperScale);
  EXPECT_EQ(resp.m_nGoal, expected.m_nGoal);
  EXPECT_EQ(resp.m_nHasWorst, expected.m_nHasWorst);
  EXPECT_EQ(resp.m_fWorst, expected.m_fWorst);
  EXPECT_EQ(resp.m_fTarget, expected.m_fTarget);
  EXPECT_EQ(resp.m_fWeight, expected.m_fWeight);
  EXPECT_EQ(resp.m_nRandom, expected.m_nRandom);
  EXPECT_EQ(resp.m_nRandomParam, expected.m_nRandomParam);
}

inline void ExpectSameFields(const CAuxiliary& auxiliary, const CAuxiliary& expected) {
  EXPECT_EQ(auxiliary.m_nID, expected.m_nID);
  EXPECT_EQ(auxiliary.m_strName, expected.m_strName);
  EXPECT_EQ(auxiliary.m_nAuxType, expected.m_nAuxType);
  EXPECT_EQ(auxiliary.m_nNumber, expected.m_nNumber);
  EXPECT_EQ(auxiliary.m_vfValues, expected.m_vfValues);
  EXPECT_EQ(auxiliary.m_strArgs, expected.m_strArgs);
  EXPECT_EQ(auxiliary.m_strEquation, expected.m_strEquation);
  EXPECT_EQ(auxiliary.m_vfCoef, expected.m_vfCoef);
  EXPECT_EQ(auxiliary.m_vstrArgNames, expected.m_vstrArgNames);
}

template <class Definition>
void ExpectSameByID(const std::map<int, Definition>& definitions,
                    const std::map<int, Definition>& expected) {
  const auto sameID = [](const auto& a, const auto& b) { return a.first == b.first; };
  ASSERT_TRUE(
      std::equal(definitions.begin(), definitions.end(), expected.begin(), expected.end(), sameID));
  for (const auto& [id, definition] : expected) {
    SCOPED_TRACE(Definition::m_strCLASS_NAME + " " + std::to_string(id));
    ExpectSameFields(definitions.at(id), definition);
  }
}

inline void ExpectSameDefinitions(const StudyDefinitions& loaded,
                                  const StudyDefinitions& expected) {
  ExpectSameByID(loaded.inputs, expected.inputs);
  ExpectSameByID(loaded.resps, expected.resps);
  ExpectSameByID(loaded.auxiliaries, expected.auxiliaries);
}

/// A study of which task 1 is made, put back, and made again as task 2.
template <class Study>
class LoadedStudy : public Study {
 protected:
  StudyDefinitions AllDefinitions() { return StudyDefinitions(this->Pod()); }

  void LoadTask() { CTask::LoadTask(this->Pod(), 1); }

  CTask MakeAgain() {
    const CTask task = this->MakeWell();
    EXPECT_EQ(task.m_nID, 2);
    return task;
  }

  /// The bytes of a record without its first key field.
  static std::string Content(const vbPersistent& record) {
    return StoredRecord(record).erase(4, 4);
  }
  template <class Record>
  std::string ContentOf(int id) {
    return Content(this->template Stored<Record>(id));
  }
  std::string PointOf(int id, int number) { return Content(this->StoredPoint(id, number)); }
  /// The task's, but for the time at which it was made.
  std::string TaskContent(int id) {
    auto task = this->template Stored<CTask>(id);
    task.m_nID = 99;
    task.m_strCreated = "then";
    task.PutObject();
    const std::string content = Content(task);
    task.RemoveObject();
    return content;
  }

  /// The tables other than those of variables and of objectives.
  void ExpectSameOtherTables() {
    EXPECT_EQ(ContentOf<CDResp>(2), ContentOf<CDResp>(1));
    EXPECT_EQ(ContentOf<CDCons>(2), ContentOf<CDCons>(1));
    EXPECT_EQ(ContentOf<CDLink>(2), ContentOf<CDLink>(1));
    EXPECT_EQ(ContentOf<CDEqn>(2), ContentOf<CDEqn>(1));
    EXPECT_EQ(ContentOf<CDSet>(2), ContentOf<CDSet>(1));
    EXPECT_EQ(ContentOf<CMessage>(2), ContentOf<CMessage>(1));
  }
  void ExpectSameTables() {
    EXPECT_EQ(ContentOf<CDVar>(2), ContentOf<CDVar>(1));
    EXPECT_EQ(ContentOf<CDObj>(2), ContentOf<CDObj>(1));
    ExpectSameOtherTables();
  }
  /// The variables but for the bounds of constants, of which there are none any more.
  void ExpectSameVariablesWithoutConstantBounds() {
    auto vars = this->template Stored<CDVar>(1);
    for (auto& bound : vars.m_vfConstLower) bound = -1e30;
    for (auto& bound : vars.m_vfConstUpper) bound = 1e30;
    vars.m_nID = 99;
    vars.PutObject();
    EXPECT_EQ(ContentOf<CDVar>(2), Content(vars));
    vars.RemoveObject();
  }
  void ExpectSameTask() { EXPECT_EQ(TaskContent(2), TaskContent(1)); }
  void ExpectSamePoints(int count) {
    for (int number = 0; number < count; ++number) {
      EXPECT_EQ(PointOf(2, number), PointOf(1, number)) << number;
    }
    EXPECT_EQ(ContentOf<CResult>(2), ContentOf<CResult>(1));
    CDPoint next(this->Pod());
    next.m_nTaskID = 2;
    next.m_nPointID = count;
    EXPECT_FALSE(next.FindObject());
  }
};
