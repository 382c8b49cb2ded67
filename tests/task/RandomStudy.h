#pragma once

#include <string>

#include "tests/task/MakeStudy.h"

// A study of random variables and responses.

/// m and s (mean and deviation, arrays of 2), u (not random), w1 to w3 (the parameters of a Weibull
/// distribution, the third one constant); the probability of failure of the system, r with its
/// deviation and its probability of failure (arrays of 2), f.
class TaskMakeRandom : public MakeStudy {
 protected:
  void SetUp() override {
    AddRandom("m", 0, 2, -1, 2, {2.0, 9.0, 3.0});
    AddRandom("s", 0, 2, -2, 2, {0.5, 2.0, 1.0});
    Add(Input("u"));
    AddRandom("w1", 0, 1, 0, 3, {0.0, 4.0, 1.0});
    AddRandom("w2", 0, 1, 1, 3, {1.0, 5.0, 2.0});
    AddRandom("w3", 3, 1, 2, 3, {-1.0, 1.0, 6.0});
    AddRandom("pof", 1, -4);
    AddRandom("r", 2, -1);
    AddRandom("rs", 2, -2);
    AddRandom("rp", 2, -3);
    CResp f = Constrained("f", 7.0);
    f.m_nObjective = 1;
    Add(f);
    MakeWell();
  }

  struct Values {
    double lower, upper, initial;
  };
  void AddRandom(const std::string& name, int type, unsigned size, int parameter, int distribution,
                 const Values& values) {
    CInput input = Input(name, type);
    input.m_uSize = size;
    input.m_nRandom = 1;
    input.m_nRandomParam = parameter;
    input.m_nDistribution = distribution;
    input.m_fLower = values.lower;
    input.m_fUpper = values.upper;
    input.m_fInitial = values.initial;
    Add(input);
  }
  void AddRandom(const std::string& name, unsigned size, int parameter) {
    CResp resp = Resp(name);
    resp.m_uSize = size;
    resp.m_nRandom = 1;
    resp.m_nRandomParam = parameter;
    Add(resp);
  }
};
