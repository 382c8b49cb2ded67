#include <gtest/gtest.h>

#include "environment/Logging.h"
#include "store/KestErr.h"
#include "tests/environment/PassException.h"
#include "tests/environment/ReplacementLog.h"

// This program has LNewException and LError of its own, and the rest from the stand-ins.

namespace {

TEST(PartialReplacement, TheLibraryCallsTheReplacedFunction) {
  ReplacementLog().clear();
  const CFileOpen error("study.cpp", 7);
  EXPECT_EQ(ReplacementLog(), "study.cpp@7 File open error\n");
}

TEST(PartialReplacement, TheProgramCallsTheReplacedFunction) {
  ReplacementLog().clear();
  LError("wrong\n");
  EXPECT_EQ(ReplacementLog(), "wrong\n");
}

TEST(PartialReplacement, TheLibraryCallsTheStandInsForTheRest) {
  EXPECT_EXIT(PassExceptionAndExit(), testing::ExitedWithCode(0),
              "EXCEPTION: engine.cpp \\(8\\): from outside\n");
}

}  // namespace
