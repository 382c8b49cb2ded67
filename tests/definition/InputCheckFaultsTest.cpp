#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/definition/InputStudy.h"

// The check of a study in which everything is wrong.

namespace {

class InputFaults : public InputStudy {
 protected:
  void PutBounded(CInput input, double lower, double upper, double initial) {
    input.Connect(study.Pod());
    input.m_fLower = lower;
    input.m_fUpper = upper;
    input.m_fInitial = initial;
    input.m_nUserScale = 1;
    ASSERT_TRUE(input.PutObject());
  }

  void PutFunction(CInput input, const std::vector<vbINT32>& indexes) {
    input.Connect(study.Pod());
    input.m_vnIdx = indexes;
    ASSERT_TRUE(input.PutObject());
  }

  void PutFaults() {
    PutLink(70, 6);
    PutEquation(71, "a,b,c,d,e");
    PutSet(72, {10.0, 11.0});
    PutLink(73, 1);
    PutSet(74, {});
    PutBounded(Sound(1, "cross"), 2.0, 1.0, 1.5);
    PutBounded(Sound(2, "open", 5), -1e30, 1e30, 0.0);
    PutBounded(Sound(3, "const", 3, 99), 2.0, 1.0, 1.5);
    PutBounded(Sound(4, "flat"), 1.0, 1.0, 2.0);
    PutBounded(Sound(5, "noset", 4), -1e30, -1.0, 0.0);
    PutBounded(Sound(6, "lostset", 6, 90), -1.0, 1.0, -2.0);
    PutBounded(Sound(7, "apart", 4, 72), 12.0, 1e30, 12.0);
    PutFunction(Sound(8, "nolink", 1), {});
    PutFunction(Sound(9, "nosyn", 2, -1), {});
    PutFunction(Function(10, "lost", 1, 90, {5}), {});
    PutFunction(Function(11, "few", 2, 71, {-3}), {0});
    PutFunction(Function(12, "link", 1, 70, {4, -99, -10, -11, -4, -3}), {0, 0, 0, 7, 2, 5});
    PutFunction(Function(13, "syn", 2, 71, {0, -98, -11, -12, -2}), {0, 0, 0, 0, 2});
    PutFunction(Function(14, "fixed", 1, 73, {-3}), {0});
    PutBounded(Sound(15, "empty", 6, 74), 3.0, 2.0, 0.0);
    PutBounded(Sound(16, "after"), 2.0, 1.0, 1.5);
  }
};

/// A line of the log and the tasks that have it: their types, and "u" for a user-defined design.
struct TaskLine {
  std::string tasks;
  const char* line;
};

const TaskLine faultLog[] = {
    {"01234u",
     "LError: (Check Inputs) : Lower bound > Upper bound for Input (cross - index=101)\n"},
    {"0134", "LWarn: (Check Inputs) : Initial value < Lower bound for Input (cross - index=101)\n"},
    {"0134", "LWarn: (Check Inputs) : Initial value > Upper bound for Input (cross - index=101)\n"},
    {"01234u",
     "LError: (Check Inputs) : Invalid scale factor for Input (cross - index=101).  The scale factor must be > 0\n"},
    {"3", "LError: (Check Inputs) : No lower bound for Input (open - index=102) in NGO task\n"},
    {"3", "LError: (Check Inputs) : No upper bound for Input (open - index=102) in NGO task\n"},
    {"2", "LError: (Check Inputs) : No lower bound for Input (open - index=102) in DOE task\n"},
    {"2", "LError: (Check Inputs) : No upper bound for Input (open - index=102) in DOE task\n"},
    {"01234u",
     "LError: (Check Inputs) : Invalid scale factor for Input (open - index=102).  The scale factor must be > 0\n"},
    {"01234u",
     "LWarn: (Check Inputs) : Lower bound = Upper bound for non-constant Input (flat - index=104)\n"},
    {"0134", "LWarn: (Check Inputs) : Initial value > Upper bound for Input (flat - index=104)\n"},
    {"01234u",
     "LError: (Check Inputs) : Invalid scale factor for Input (flat - index=104).  The scale factor must be > 0\n"},
    {"3", "LError: (Check Inputs) : No lower bound for Input (noset - index=105) in NGO task\n"},
    {"2", "LError: (Check Inputs) : No lower bound for Input (noset - index=105) in DOE task\n"},
    {"0134", "LWarn: (Check Inputs) : Initial value > Upper bound for Input (noset - index=105)\n"},
    {"01234u",
     "LError: (Check Inputs): Input (noset - index=105) is a discrete type but it does not reference a discrete set specification\n"},
    {"01234u",
     "LError: (Check Inputs) : Invalid scale factor for Input (noset - index=105).  The scale factor must be > 0\n"},
    {"0134",
     "LWarn: (Check Inputs) : Initial value < Lower bound for Input (lostset - index=106)\n"},
    {"01234u",
     "LError: (Check Inputs) : Referenced discrete set for Input (lostset - index=106) does not exist\n"},
    {"3", "LError: (Check Inputs) : No upper bound for Input (apart - index=107) in NGO task\n"},
    {"2", "LError: (Check Inputs) : No upper bound for Input (apart - index=107) in DOE task\n"},
    {"01234u",
     "LError: (Check Inputs) : Bounds for Input (apart - index=107) does not intersect the discrete set values.\n"},
    {"01234u",
     "LError: (Check Inputs) : Invalid scale factor for Input (apart - index=107).  The scale factor must be > 0\n"},
    {"01234u",
     "LError: (Check Inputs): Input (nolink - index=108) is a link type but it does not reference a link specification\n"},
    {"01234u",
     "LError: (Check Inputs): Input (nosyn - index=109) is a synthetic type but it does not reference a synthetic specification\n"},
    {"01234u",
     "LError: (Check Inputs) : Referenced auxiliary object for Input (lost - index=110) does not exist\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument number mismatch for Input (few - index=111) 1 != 5\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 1 for Input (link - index=112) does not reference another input\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 2 (DB_ID=99) for Input (link - index=112) does not exist\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 3 (DB_ID=10) for Linked Input (link - index=112) is not independent\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 4 (DB_ID=11) for Linked Input (link - index=112) is not independent\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 5 (DB_ID=4) for Input (link - index=112) references an element index (2) that does not exist\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 6 (DB_ID=3) for Input (link - index=112) references an element index (5) that does not exist\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 1 for Input (syn - index=113) does not reference another input\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 2 (DB_ID=98) for Input (syn - index=113) does not exist\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 3 (DB_ID=11) for Synthetic Input (syn - index=113) is not linked or independent\n"},
    {"01234u",
     "LError: (Check Inputs) : Argument 5 (DB_ID=2) for Input (syn - index=113) references an element index (2) that does not exist\n"},
    {"0",
     "LWarn: (Check Inputs) : Dependent input (fixed - index=114) only references constant variables."},
    {"0", "LPrint:      The gradient of this input will be zero. This may cause DGO to halt.\n\n"},
    {"01234u",
     "LError: (Check Inputs) : Lower bound > Upper bound for Input (empty - index=115)\n"},
    {"0134", "LWarn: (Check Inputs) : Initial value < Lower bound for Input (empty - index=115)\n"},
    {"01234u",
     "LError: (Check Inputs) : Referenced discrete set for Input (empty - index=115) is not defined\n"},
};

TEST_F(InputFaults, AreReportedAllAtOnceInEveryTask) {
  PutFaults();
  for (const char task : std::string("01234u")) {
    SCOPED_TRACE(task);
    std::vector<std::string> expected;
    for (const TaskLine& line : faultLog) {
      if (line.tasks.find(task) != std::string::npos) expected.push_back(line.line);
    }
    if (task == 'u') {
      SetTask(2, 11);
    } else {
      SetTask(task - '0');
    }
    ExpectCheck(false, expected);
  }
}

}  // namespace
