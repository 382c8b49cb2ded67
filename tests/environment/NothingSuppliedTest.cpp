#include <gtest/gtest.h>

#include <cstdlib>

#include "store/KestErr.h"
#include "tests/environment/PassException.h"

// This program neither defines nor calls anything of the environment: what the library imports of
// it comes through the target alone.

namespace {

void MakeException() {
  const CFileOpen error("study.cpp", 7);
  std::_Exit(0);
}

TEST(NothingSupplied, TheLibraryLogsThroughTheStandIns) {
  EXPECT_EXIT(MakeException(), testing::ExitedWithCode(0),
              "NEW EXCEPTION: study.cpp \\(7\\): File open error\n");
  EXPECT_EXIT(PassExceptionAndExit(), testing::ExitedWithCode(0),
              "EXCEPTION: engine.cpp \\(8\\): from outside\n");
}

}  // namespace
