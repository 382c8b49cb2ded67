#pragma once

#include "tests/task/MakeStudy.h"

/// A study with arrays, a constant, integer and discrete variables, links, synthetic functions and
/// a pass/fail response, and task 1 made of it. Transfer order: k (integer), x (array of 3), c
/// (constant), y (linked), z (synthetic array of 2), d (discrete); f (array of 2), g (linked), h
/// (synthetic), p (pass/fail).
class FunctionsStudy : public MakeStudy {
 protected:
  void SetUp() override {
    AddLink("weighted", {1.0, 2.0, 3.0});
    AddEquation("area", "a,b", "a*b");
    AddLink("spare", {0.0, 1.0});
    AddEquation("total", "p,q", "p+q");
    AddLink("difference", {0.0, 1.0, -1.0});
    AddSet("plates", {1.0, 2.0, 4.0, 8.0});
    AddInputs();
    AddResps();
    MakeWell();
  }

  void AddInputs() {
    CInput x = Input("x");
    x.m_uSize = 3;
    x.m_fLower = 0.0;
    x.m_fUpper = 10.0;
    x.m_fInitial = 4.0;
    AddAt(x, 2);
    CInput c = Input("c", 3);
    c.m_fInitial = 7.0;
    AddAt(c, 5);
    CInput y = Function(Input("y", 1), 1, {-1, -2});
    y.m_vnIdx = {2, 0};
    y.m_fLower = -1e30;
    y.m_fUpper = 20.0;
    AddAt(y, 6);
    CInput z = Function(Input("z", 2), 2, {-1, -3});
    z.m_vnIdx = {1, 0};
    z.m_vnLength = {2, 1};
    z.m_uSize = 2;
    z.m_fLower = -0.5;
    z.m_fUpper = 1e30;
    AddAt(z, 7);
    AddAt(IntegerObjective(), 1);
    CInput d = Input("d", 4);
    d.m_nAuxID = 6;
    d.m_fLower = 1.5;
    d.m_fUpper = 5.0;
    d.m_fInitial = 1.75;
    AddAt(d, 9);
  }

  CInput IntegerObjective() {
    CInput k = Input("k", 5);
    k.m_fLower = -2.5;
    k.m_fUpper = 2.5;
    k.m_fInitial = 2.25;
    k.m_nUserScale = 1;
    k.m_fScale = 2.0;
    k.m_nObjective = 1;
    k.m_nGoal = 2;
    k.m_nHasWorst = 1;
    k.m_fWorst = 4.0;
    k.m_fTarget = 1.0;
    k.m_fWeight = 0.5;
    return k;
  }

  void AddResps() {
    CResp f = Objective("f");
    f.m_uSize = 2;
    f.m_nGoal = 1;
    f.m_nHasWorst = 1;
    f.m_fWorst = 10.0;
    f.m_fWeight = 3.0;
    Add(f);
    CResp g = Function(Constrained("g", 5.0, 1), 5, {-1, 1});
    g.m_vnIdx = {1, 1};
    g.m_nHasLower = 1;
    g.m_fLower = -3.0;
    g.m_nHasUpperScale = 1;
    g.m_fUpperScale = 4.0;
    Add(g);
    CResp h = Function(Constrained("h", 0.25, 2), 4, {2, -4});
    h.m_vnIdx = {0, 1};
    Add(h);
    CResp p = Constrained("p", 1.0, 3);
    p.m_nConstraint = 0;
    Add(p);
  }

  void AddAt(CInput input, unsigned long place) {
    input.Connect(Pod());
    Add(input);
    input.m_uIndex = place;
    input.PutObject();
  }
};
