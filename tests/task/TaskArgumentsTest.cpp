#include <climits>
#include <filesystem>
#include <ostream>
#include <utility>

#include "store/KestErr.h"
#include "tests/task/Definitions.h"

// How arguments are resolved to positions in a table.

namespace {

using Numbers = std::vector<int>;

struct Row {
  Numbers positions;
  Numbers kinds;
  Numbers lengths;
  bool operator==(const Row&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
  return stream << testing::PrintToString(row.positions) << testing::PrintToString(row.kinds)
                << testing::PrintToString(row.lengths);
}

const std::string rest = "     This starting index/length combination will exceed the total\n";

class TaskArguments : public Definitions {
 protected:
  /// Stores an Input of three elements.
  void Put(int id, int type) {
    PutInput(id, type, [](CInput& input) { input.m_uSize = 3; });
  }
  void PutAnswer(int id, int type) {
    PutResp(id, type, [](CResp& resp) { resp.m_uSize = 3; });
  }

  Row Resolve(int type, int kind, Numbers arguments, Numbers indexes = {}, Numbers lengths = {},
              Row row = {}) {
    Numbers table = table_;
    if (indexes.empty()) indexes.assign(arguments.size(), 0);
    Task().ID2Index(owner_, "owner", table, type, kind, arguments, indexes, lengths, row.positions,
                    row.kinds, row.lengths);
    return row;
  }

  /// The messages of a search for one argument that is past the end of its array.
  LogLines RefusalOf(int argument, int index, int length, int type = 0, int kind = 20) {
    ClearLog();
    try {
      Resolve(type, kind, {argument}, {index}, {length});
      ADD_FAILURE() << index << ' ' << length;
    } catch (const CIndexError& fault) {
      EXPECT_STREQ(fault.what(), "Index file does not match the data file");
    }
    return Messages();
  }

  Numbers table_{-1, 4, 4, 4, 2, -1, 9};
  int owner_ = 22;
};

TEST_F(TaskArguments, AreTheFirstPositionOfTheirIDAndTheIndex) {
  for (const int id : {2, 4, 9}) Put(id, 0);
  EXPECT_EQ(Resolve(0, 20, {-9, -4, -2, -4}, {0, 0, 0, 2}),
            (Row{{6, 1, 4, 3}, {20, 20, 20, 20}, {0, 0, 0, 0}}));
}

TEST_F(TaskArguments, HaveTheLengthsThatTheOwnerGives) {
  for (const int id : {2, 4}) Put(id, 0);
  EXPECT_EQ(Resolve(0, 20, {-4, -2, -4}, {1, 0, 0}, {2, 1, 3}),
            (Row{{2, 4, 1}, {20, 20, 20}, {2, 1, 3}}));
}

TEST_F(TaskArguments, OfNoneAreAnEmptyRow) {
  EXPECT_EQ(Resolve(0, 20, {}), (Row{}));
}

TEST_F(TaskArguments, OfZeroAreSkipped) {
  Put(2, 0);
  EXPECT_EQ(Resolve(0, 20, {0, -2, 0}, {7, 1, 7}, {9, 1, 9}),
            (Row{{0, 5, 0}, {0, 20, 0}, {0, 1, 0}}));
}

TEST_F(TaskArguments, OfAnotherTypeWaitForAnotherPass) {
  Put(2, 0);
  Put(4, 3);
  Put(9, 5);
  const Row first = Resolve(0, 20, {-9, -4, -2});
  EXPECT_EQ(first, (Row{{0, 0, 4}, {0, 0, 20}, {0, 0, 0}}));
  const Row second = Resolve(3, 23, {-9, -4, -2}, {}, {}, first);
  EXPECT_EQ(second, (Row{{0, 1, 4}, {0, 23, 20}, {0, 0, 0}}));
  EXPECT_EQ(Resolve(5, 20, {-9, -4, -2}, {}, {}, second),
            (Row{{6, 1, 4}, {20, 23, 20}, {0, 0, 0}}));
}

TEST_F(TaskArguments, OfAnotherTypeAreNotLookedAtFurther) {
  Put(1, 7);
  PutAnswer(2, -1);
  Put(3, 0);
  ClearLog();
  EXPECT_EQ(Resolve(3, 23, {-1, 2, -3}, {9, 9, 9}, {9, 9, 9}),
            (Row{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));
  EXPECT_TRUE(Log().empty());
}

TEST_F(TaskArguments, OfInputsHaveAKindByType) {
  const std::vector<std::pair<int, int>> kinds{{0, 20}, {1, 21}, {2, 22}, {3, 23},
                                               {4, 20}, {5, 20}, {6, 23}};
  for (const auto& [type, kind] : kinds) {
    Put(9, type);
    for (int wanted = 19; wanted <= 27; ++wanted) {
      const Row found = Resolve(type, wanted, {-9}, {1}, {2});
      EXPECT_EQ(found, wanted == kind ? (Row{{7}, {kind}, {2}}) : (Row{{0}, {0}, {0}}))
          << type << ' ' << wanted;
    }
  }
}

TEST_F(TaskArguments, OfResponsesHaveAKindByType) {
  for (int type = 0; type <= 2; ++type) {
    PutAnswer(9, type);
    for (int wanted = 19; wanted <= 27; ++wanted) {
      const Row found = Resolve(type, wanted, {9}, {1}, {2});
      EXPECT_EQ(found, wanted == 24 + type ? (Row{{7}, {wanted}, {2}}) : (Row{{0}, {0}, {0}}))
          << type << ' ' << wanted;
    }
  }
}

TEST_F(TaskArguments, WithBothSignsAreInputsAndResponses) {
  Put(2, 0);
  PutAnswer(9, 0);
  const Row inputs = Resolve(0, 20, {9, -2});
  EXPECT_EQ(inputs, (Row{{0, 4}, {0, 20}, {0, 0}}));
  EXPECT_EQ(Resolve(0, 24, {9, -2}, {}, {}, inputs), (Row{{6, 4}, {24, 20}, {0, 0}}));
}

// ---- Failures ----

TEST_F(TaskArguments, ThatAreMissingAreNotFound) {
  Put(2, 0);
  PutAnswer(4, 0);
  for (const int argument : {2, -4, -5, INT_MAX, -INT_MAX}) {
    EXPECT_THROW(Resolve(0, 20, {argument}), CObjectNotFound) << argument;
  }
}

TEST_F(TaskArguments, OfAnIDThatHasNoNegationAreNotFound) {
  EXPECT_THROW(Resolve(0, 20, {INT_MIN}), CObjectNotFound);
}

TEST_F(TaskArguments, OfAnUnknownTypeAreRefused) {
  for (const int type : {7, -1}) {
    Put(2, type);
    ClearLog();
    EXPECT_THROW(Resolve(type, 20, {-2}), CInvalidType) << type;
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Input object type!\n", "", 0}}));
  }
  for (const int type : {4, -1}) {
    PutAnswer(2, type);
    ClearLog();
    EXPECT_THROW(Resolve(type, 24, {2}), CInvalidType) << type;
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", "", 0}}));
  }
}

TEST_F(TaskArguments, OfAPassFailResponseAreRefused) {
  PutAnswer(2, 3);
  for (const int kind : {23, 24}) {
    ClearLog();
    EXPECT_THROW(Resolve(3, kind, {2}), CInvalidType) << kind;
    EXPECT_EQ(Messages(), (LogLines{{"LError", "Invalid Resp object type!\n", "", 0}}));
  }
}

TEST_F(TaskArguments, UpToTheEndOfTheirArrayAreTaken) {
  Put(9, 0);
  for (const auto& [index, length] :
       std::vector<std::pair<int, int>>{{0, 3}, {1, 2}, {2, 1}, {3, 0}, {0, 0}}) {
    EXPECT_EQ(Resolve(0, 20, {-9}, {index}, {length}), (Row{{6 + index}, {20}, {length}}));
  }
}

TEST_F(TaskArguments, PastTheEndOfTheirArrayAreRefusedByASyntheticVariable) {
  Put(9, 0);
  EXPECT_EQ(
      RefusalOf(-9, 2, 2),
      (LogLines{{"LError",
                 "Invalid synthetic function argument starting index/length combination\n", "", 0},
                {"LPrint", "     Synthetic design variable owner\n", "", 0},
                {"LPrint", "     Input argument X9 has total length of 3\n", "", 0},
                {"LPrint", "     but is specified with starting index 2 and length 2\n", "", 0},
                {"LPrint", rest, "", 0},
                {"LPrint", "     length of the argument\n", "", 0}}));
}

TEST_F(TaskArguments, PastTheEndOfTheirArrayAreRefusedByASyntheticResponse) {
  PutAnswer(9, 0);
  owner_ = 26;
  EXPECT_EQ(
      RefusalOf(9, 4, 0, 0, 24),
      (LogLines{{"LError",
                 "Invalid synthetic function argument starting index/length combination\n", "", 0},
                {"LPrint", "     Synthetic response variable owner\n", "", 0},
                {"LPrint", "     Input argument R9 has total length of 3\n", "", 0},
                {"LPrint", "     but is specified with starting index 4 and length 0\n", "", 0},
                {"LPrint", rest, "", 0},
                {"LPrint", "     length of the argument\n", "", 0}}));
}

TEST_F(TaskArguments, PastTheEndOfTheirArrayAreRefusedWithoutNamingOtherOwners) {
  Put(9, 0);
  for (const int owner : {20, 21, 23, 24, 25, 0}) {
    owner_ = owner;
    const LogLines refusal = RefusalOf(-9, 0, 4);
    ASSERT_EQ(refusal.size(), 5U) << owner;
    EXPECT_EQ(refusal[1].text, "     Input argument X9 has total length of 3\n");
    EXPECT_EQ(refusal[2].text, "     but is specified with starting index 0 and length 4\n");
  }
}

TEST_F(TaskArguments, PastTheEndOfTheirArrayAreRefusedWhateverTheirKind) {
  Put(9, 0);
  EXPECT_EQ(RefusalOf(-9, 0, 4, 0, 23).size(), 6U);
}

TEST_F(TaskArguments, OutsideTheirArrayAreRefusedBothWays) {
  Put(9, 0);
  for (const auto& [index, length] : std::vector<std::pair<int, int>>{
           {INT_MAX, 1}, {1, INT_MAX}, {INT_MAX, INT_MAX}, {-1, 1}, {2, -1}, {INT_MIN, INT_MIN}}) {
    EXPECT_EQ(RefusalOf(-9, index, length).size(), 6U) << index << ' ' << length;
  }
}

TEST_F(TaskArguments, OfALinkMayBePastTheEndOfTheirArray) {
  Put(9, 0);
  EXPECT_EQ(Resolve(0, 20, {-9}, {5}), (Row{{11}, {20}, {0}}));
}

TEST_F(TaskArguments, ThatStandInNoTableStopTheProgram) {
  // Each stop leaves its lock behind, so it has to happen in a study of its own.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  Put(3, 0);
  EXPECT_DEATH(Resolve(0, 20, {-3}), "where != vnID\\.end\\(\\)");
  table_.clear();
  EXPECT_DEATH(Resolve(0, 20, {-3}), "where != vnID\\.end\\(\\)");
  EXPECT_EQ(Resolve(0, 21, {-3}), (Row{{0}, {0}, {0}}));
}

TEST_F(TaskArguments, NeedADatabase) {
  Numbers none;
  EXPECT_THROW(CTask().ID2Index(22, "owner", none, 0, 20, none, none, none, none, none, none),
               CNoDatabaseOpen);
}

TEST_F(TaskArguments, AreResolvedUnderTheLockOnly) {
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(Resolve(0, 20, {0}), CFileLock);
  std::filesystem::remove(study.LockPath());
}

}  // namespace
