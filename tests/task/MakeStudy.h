#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/Message.h"
#include "results/Result.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Log.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"
#include "tests/support/StudyCheck.h"

// Studies to make tasks of, and what is looked at when that was tried.

using Numbers = std::vector<double>;
using Rows = std::vector<Numbers>;
using Names = std::vector<std::string>;

/// The numbers of a stored vector or array.
template <class Elements>
Numbers AsNumbers(const Elements& elements) {
  Numbers numbers;
  for (const auto& element : elements) numbers.push_back(static_cast<double>(element));
  return numbers;
}

template <class Elements>
Rows AsRows(const std::vector<Elements>& rows) {
  Rows all;
  for (const Elements& row : rows) all.push_back(AsNumbers(row));
  return all;
}

inline const std::string kStartLine = "LPrint: \n***** Start -- Make Task *****\n";
inline const std::string kEndLine = "LPrint: \n***** End -- Make Task *****\n";
inline const std::string kNotDefined = "LWarn: Could not define the task. Errors found!";

/// What was printed, as "LError: text"; logged exceptions are left out.
inline Names PrintedLines() {
  Names lines;
  for (const LogEntry& entry : Log()) {
    if (entry.file.empty()) lines.push_back(entry.kind + ": " + entry.text);
  }
  return lines;
}

/// The lines between those of the start and the end.
inline Names Between(Names lines) {
  lines.insert(lines.begin(), kStartLine);
  lines.push_back(kEndLine);
  return lines;
}

/// A study that definitions are added to; they get their IDs and places in order.
class MakeStudy : public testing::Test {
 protected:
  POD* Pod() const { return study.Pod(); }

  CInput Input(const std::string& name, int type = 0) {
    CInput input(Pod());
    input.m_strName = name;
    input.m_nType = type;
    input.m_fLower = -1.0;
    input.m_fUpper = 1.0;
    return input;
  }

  CResp Resp(const std::string& name, int type = 0) {
    CResp resp(Pod());
    resp.m_strName = name;
    resp.m_nType = type;
    return resp;
  }

  /// Stores it as the next one in transfer order; its ID.
  int Add(CInput& input) { return Store(input, nextInput_, inputPlace_); }
  int Add(CInput&& input) { return Add(input); }
  int Add(CResp& resp) { return Store(resp, nextResp_, respPlace_); }
  int Add(CResp&& resp) { return Add(resp); }

  /// A linked or synthetic definition with the first element of each argument.
  template <class Definition>
  Definition Function(Definition definition, int auxiliary, const std::vector<vbINT32>& arguments) {
    definition.Connect(Pod());
    definition.m_nAuxID = auxiliary;
    definition.m_vnArg = arguments;
    definition.m_vnIdx.assign(arguments.size(), 0);
    definition.m_vnLength.assign(arguments.size(), 1);
    return definition;
  }

  int AddLink(const std::string& name, const std::vector<vbFLOAT64>& coefficients) {
    CAuxiliary link = Auxiliary(name, 1);
    link.m_vfCoef = coefficients;
    return Put(link);
  }
  int AddEquation(const std::string& name, const std::string& arguments,
                  const std::string& equation) {
    CAuxiliary function = Auxiliary(name, 2);
    function.m_strArgs = arguments;
    function.m_strEquation = equation;
    return Put(function);
  }
  int AddSet(const std::string& name, const std::vector<vbFLOAT64>& values) {
    CAuxiliary set = Auxiliary(name, 4);
    set.m_vfValues = values;
    return Put(set);
  }

  CResp Objective(const std::string& name) {
    CResp resp = Resp(name);
    resp.m_nObjective = 1;
    return resp;
  }
  CResp Constrained(const std::string& name, double upper, int type = 0) {
    CResp resp = Resp(name, type);
    resp.m_nHasUpper = 1;
    resp.m_fUpper = upper;
    return resp;
  }

  /// The smallest study that passes for every type of task: "x", the objective "f", the constraint
  /// "g".
  void AddSmallStudy() {
    CInput x = Input("x");
    x.m_fInitial = 0.5;
    Add(x);
    Add(Objective("f"));
    Add(Constrained("g", 2.0));
  }

  /// The stored settings, to be changed and put back.
  CDesignControl Control() {
    CDesignControl control(Pod());
    control.GetObject();
    return control;
  }
  void SetType(int type) {
    CDesignControl control = Control();
    control.m_nTaskType = type;
    if (type == 2) SetRandomDesign(control, 5);
    control.PutObject();
  }
  static void SetRandomDesign(CDesignControl& control, int points) {
    control.m_DOE.m_nMethod = 10;
    std::vector<int> options(11, 0);
    options.back() = points;
    control.m_DOE.SetOptions(options);
  }

  struct UserPoint {
    int used, run, locked;
    std::vector<vbFLOAT64> vars, resps;
  };
  void SetPoints(const std::vector<UserPoint>& rows) {
    CGPoint points(Pod());
    for (const UserPoint& row : rows) {
      points.m_vnUsed.push_back(row.used);
      points.m_vnRun.push_back(row.run);
      points.m_vnLocked.push_back(row.locked);
      points.m_vDVars.push_back(row.vars);
      points.m_vResps.push_back(row.resps);
    }
    points.PutObject();
  }

  /// Makes a task, without a look at programs. What is logged meanwhile stays in the log.
  CTask Make() {
    ClearLog();
    CTask task(Pod());
    task.DefineTask(true, true);
    return task;
  }
  /// The same where that has to succeed with nothing to say.
  CTask MakeWell() {
    CTask task = Make();
    EXPECT_EQ(PrintedLines(), Between({}));
    EXPECT_GT(task.m_nID, 0);
    return task;
  }
  template <class Record>
  Record Stored(int id) {
    Record record(Pod());
    record.m_nID = id;
    EXPECT_TRUE(record.GetObject()) << record.GetVBClassName() << ' ' << id;
    return record;
  }
  CDPoint StoredPoint(int task, int number) {
    CDPoint point(Pod());
    point.m_nTaskID = task;
    point.m_nPointID = number;
    EXPECT_TRUE(point.GetObject()) << "point " << number;
    return point;
  }

  /// The records of a task, in the order in which they are made, and its points up to number 200.
  Names RecordsOf(int id) {
    const CLock lock(Pod(), 0);
    Names names;
    AppendIfStored<CTask>(id, names);
    AppendIfStored<CResult>(id, names);
    AppendIfStored<CDVar>(id, names);
    for (int number = 0; number <= 200; ++number) {
      CDPoint point(Pod());
      point.m_nTaskID = id;
      point.m_nPointID = number;
      if (point.GetObject()) names.push_back("CDPoint " + std::to_string(number));
    }
    AppendIfStored<CDResp>(id, names);
    AppendIfStored<CDCons>(id, names);
    AppendIfStored<CDObj>(id, names);
    AppendIfStored<CDLink>(id, names);
    AppendIfStored<CDEqn>(id, names);
    AppendIfStored<CDSet>(id, names);
    AppendIfStored<CMessage>(id, names);
    return names;
  }

  static void ExpectPointCount(const CResult& result, int points) {
    EXPECT_EQ(result.m_nNumPoints, points);
    EXPECT_EQ(result.m_nTotalPoints, points);
  }
  static void ExpectNoResponses(const CDPoint& point) {
    EXPECT_EQ(point.m_IResp.size(), 0U);
    EXPECT_EQ(point.m_LResp.size(), 0U);
    EXPECT_EQ(point.m_SResp.size(), 0U);
  }

  /// All objects of the data file by their address.
  std::map<long, std::string> Objects() const {
    std::map<long, std::string> objects;
    for (const RawBlock& block : ReadRawFile(study.DataPath()).blocks) {
      if (block.status == 'N') objects[block.ObjectAddress()] = block.object;
    }
    return objects;
  }
  /// How many objects of each class ID there are in the data file.
  std::map<long, int> ClassCounts() const {
    std::map<long, int> counts;
    for (const auto& [address, object] : Objects()) ++counts[WordAt(object, 0)];
    return counts;
  }

  /// The files are complete outside of any lock.
  void ExpectSoundFiles() const { EXPECT_EQ(FaultsOfStudy(study.BasePath()), ""); }

  Study study;

 private:
  CAuxiliary Auxiliary(const std::string& name, int type) {
    CAuxiliary auxiliary(Pod());
    auxiliary.m_nID = ++nextAuxiliary_;
    auxiliary.m_strName = name;
    auxiliary.m_nAuxType = type;
    return auxiliary;
  }
  int Put(CAuxiliary& auxiliary) {
    auxiliary.PutObject();
    return nextAuxiliary_;
  }

  template <class Definition>
  int Store(Definition& definition, int& id, unsigned long& place) {
    definition.m_nID = ++id;
    definition.m_uIndex = place + 1;
    place += definition.m_uSize;
    definition.PutObject();
    return id;
  }

  template <class Record>
  void AppendIfStored(int id, Names& names) {
    Record record(Pod());
    record.m_nID = id;
    if (record.GetObject()) names.push_back(Record::m_strCLASS_NAME);
  }

  int nextInput_ = 0;
  int nextResp_ = 0;
  int nextAuxiliary_ = 0;
  unsigned long inputPlace_ = 0;
  unsigned long respPlace_ = 0;
};
