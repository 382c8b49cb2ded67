#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/task/MakeStudy.h"

// Studies whose tasks have more starting points than one, or constraints that filter points.

/// Combinatorial variables: two with other variables between them, or a single one.
class TaskMakeCombinatorial : public MakeStudy {
 protected:
  /// Transfer order: b (10 or 20), c (constant), x, a (2 or 3 of four plates); f.
  void AddTwoChoices() {
    const int plates = AddSet("plates", {1.0, 2.0, 3.0, 5.0});
    const int bars = AddSet("bars", {10.0, 20.0});
    Add(Choice("b", bars, -1e30, 1e30, 15.0));
    CInput c = Input("c", 3);
    c.m_fInitial = 9.0;
    Add(c);
    Add(Input("x"));
    Add(Choice("a", plates, 2.0, 4.0, 2.5));
    Add(Objective("f"));
  }
  /// a, whose bounds lie between the two members of its set, and x; f.
  void AddChoiceBetweenMembers() {
    const int plates = AddSet("plates", {1.0, 5.0});
    Add(Choice("a", plates, 2.0, 4.0, 3.0));
    Add(Input("x"));
    Add(Objective("f"));
  }

 private:
  CInput Choice(const std::string& name, int set, double lower, double upper, double initial) {
    CInput choice = Input(name, 6);
    choice.m_nAuxID = set;
    choice.m_fLower = lower;
    choice.m_fUpper = upper;
    choice.m_fInitial = initial;
    return choice;
  }
};

/// x, c (constant), y (linked); f, g (linked), with three rows of points of which two are used.
class TaskMakeUserPoints : public MakeStudy {
 protected:
  void SetUp() override {
    const int twice = AddLink("twice", {0.0, 2.0});
    CInput x = Input("x");
    x.m_fInitial = 0.5;
    Add(x);
    CInput c = Input("c", 3);
    c.m_fInitial = 9.0;
    Add(c);
    Add(Function(Input("y", 1), twice, {-1}));
    Add(Objective("f"));
    Add(Function(Resp("g", 1), twice, {1}));
    SetPoints({{1, 1, 0, {0.125, 5.0, 0.25}, {100.0, 200.0}},
               {0, 0, 1, {0.0, 0.0, 0.0}, {1.0, 2.0}},
               {1, 0, 1, {0.375, 6.0, 0.75}, {11.0, 22.0}}});
  }

  void MakeMultiStart() {
    CDesignControl control = Control();
    control.m_DGO.m_nMultiStart = 1;
    control.PutObject();
    MakeWell();
  }
  void MakeDesign() {
    CDesignControl control = Control();
    control.m_nTaskType = 2;
    control.m_DOE.m_nMethod = 11;
    control.PutObject();
    MakeWell();
  }

  void ExpectAnalysedPoint(const CDPoint& point) {
    EXPECT_EQ(AsNumbers(point.m_IDVar), Numbers{0.125});
    EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{5});
    EXPECT_EQ(AsNumbers(point.m_LDVar), Numbers{0.25});
    EXPECT_EQ(point.m_SDVar.size(), 0U);
    ExpectNoResponses(point);
  }
  void ExpectKnownPoint(const CDPoint& point) {
    EXPECT_EQ(AsNumbers(point.m_IDVar), Numbers{0.375});
    EXPECT_EQ(AsNumbers(point.m_CDVar), Numbers{6});
    EXPECT_EQ(AsNumbers(point.m_LDVar), Numbers{0.75});
    EXPECT_EQ(AsNumbers(point.m_IResp), Numbers{11});
    EXPECT_EQ(AsNumbers(point.m_LResp), Numbers{22});
    EXPECT_EQ(point.m_SResp.size(), 0U);
  }

  void ExpectToFollowTheFirstPoint() {
    const auto task = Stored<CTask>(1);
    EXPECT_EQ(task.m_uNumPoints, 3);
    EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), (Numbers{1, 1, 0}));
    EXPECT_EQ(AsNumbers(task.m_vnPointLocked), (Numbers{0, 0, 1}));
    EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_IDVar), Numbers{0.5});
    EXPECT_EQ(AsNumbers(StoredPoint(1, 0).m_CDVar), Numbers{9});
    ExpectAnalysedPoint(StoredPoint(1, 1));
    ExpectKnownPoint(StoredPoint(1, 2));
    ExpectPoints(3);
  }
  void ExpectToBeAllPoints() {
    const auto task = Stored<CTask>(1);
    EXPECT_EQ(task.m_uNumPoints, 2);
    EXPECT_EQ(AsNumbers(task.m_vnAnalyzeFlags), (Numbers{1, 0}));
    EXPECT_EQ(AsNumbers(task.m_vnPointLocked), (Numbers{0, 1}));
    ExpectAnalysedPoint(StoredPoint(1, 0));
    ExpectKnownPoint(StoredPoint(1, 1));
    ExpectPoints(2);
  }
  void ExpectPoints(int count) {
    EXPECT_EQ(CDPoint(Pod()).CountObjects(), count);
    ExpectPointCount(Stored<CResult>(1), count);
    ExpectSoundFiles();
  }
};

/// Constraints on y (linked), f, g (a link of variables), h (a link of f and a variable), s
/// (synthetic, of variables).
class TaskMakeFilter : public MakeStudy {
 protected:
  void SetUp() override {
    const int twice = AddLink("twice", {0.0, 2.0});
    const int sum = AddLink("sum", {0.0, 1.0, 1.0});
    const int square = AddEquation("square", "a", "a*a");
    Add(Input("x"));
    CInput y = Function(Input("y", 1), twice, {-1});
    y.m_fLower = -1e30;
    y.m_fUpper = 1.5;
    Add(y);
    Add(Constrained("f", 10.0));
    Add(Function(Constrained("g", 20.0, 1), sum, {-1, -2}));
    Add(Function(Constrained("h", 30.0, 1), sum, {-1, 1}));
    Add(Function(Constrained("s", 40.0, 2), square, {-2}));
  }
  CTask MakeFiltered(int method, int filter) {
    CDesignControl control = Control();
    control.m_nTaskType = 2;
    SetRandomDesign(control, 6);
    control.m_DOE.m_nMethod = method;
    control.m_DOE.m_nFilter = filter;
    control.PutObject();
    return Make();
  }
};
