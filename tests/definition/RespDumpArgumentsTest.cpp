#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/definition/RespReports.h"

namespace {

/// The table of the responses that refer to a link or an equation.
class RespArgumentReports : public RespReports {
 protected:
  /// Response 1 with a function of these arguments.
  void StoreFunction(int type, const std::vector<vbINT32>& arguments,
                     const std::vector<vbINT32>& indexes, const std::vector<vbINT32>& lengths) {
    CResp resp = Resp(1, "f", type);
    resp.m_nAuxID = 9;
    resp.m_vnArg = arguments;
    resp.m_vnIdx = indexes;
    resp.m_vnLength = lengths;
    resp.PutObject();
  }
  void StoreSingles(int type, const std::vector<vbINT32>& arguments) {
    StoreFunction(type, arguments, std::vector<vbINT32>(arguments.size(), 0),
                  std::vector<vbINT32>(arguments.size(), 1));
  }
  /// Expects a report of response 1, linked or synthetic, with this list of arguments.
  void ExpectArguments(const std::string& code, const std::string& list) {
    EXPECT_EQ(Report(), head + "    1           f        0       1  " + code + "    No  \n" +
                            auxiliaryHead + "    1           f        9  " + code + "  " + list +
                            reportEnd);
  }
};

TEST_F(RespArgumentReports, ShowAuxiliariesFromIDOneOn) {
  CResp resp = Resp(1, "a", 1);
  resp.PutObject();
  resp = Resp(2, "b", 2);
  resp.m_nAuxID = -1;
  resp.PutObject();
  EXPECT_EQ(Report(), head +
                          "    1           a        0       1  link    No  \n"
                          "    2           b        0       1   syn    No  \n" +
                          reportEnd);
  resp = Resp(3, "c", 1);
  resp.m_nAuxID = 1;
  resp.PutObject();
  EXPECT_EQ(Report(), head +
                          "    1           a        0       1  link    No  \n"
                          "    2           b        0       1   syn    No  \n"
                          "    3           c        0       1  link    No  \n" +
                          auxiliaryHead + "    3           c        1  link  \n" + reportEnd);
}

TEST_F(RespArgumentReports, ShowNoArgumentsOfOtherKinds) {
  for (const int type : {0, 3}) {
    CResp resp = Resp(1 + type, "a", type);
    resp.m_nAuxID = 12345678;
    resp.m_vnArg = {1, 2};
    resp.m_vnIdx = {0, 0};
    resp.m_vnLength = {1, 1};
    resp.PutObject();
  }
  EXPECT_EQ(Report(), head +
                          "    1           a        0       1   ind    No  \n"
                          "    4           a        0       1  ????    No  \n" +
                          auxiliaryHead +
                          "    1           a  12345678  ????  \n"
                          "    4           a  12345678  ????  \n" +
                          reportEnd);
}

TEST_F(RespArgumentReports, ShowElementsOfALinkOneByOne) {
  StoreFunction(1, {-1, 2, -3, 4, 5}, {0, 1, 2, -1, 0}, {1, 1, 7, 7, 7});
  ExpectArguments("link", "-1, 2(Idx=1,Len=1), -3(Idx=2,Len=1), 4, 5\n");
}

TEST_F(RespArgumentReports, ShowRangesOfElementsOfASyntheticResponse) {
  StoreFunction(2, {-1, 2, 3, -4, 5}, {0, 1, 0, 0, 7}, {1, 1, 2, 0, 9});
  ExpectArguments(" syn",
                  "-1, 2(Idx=1,Len=1), 3(Idx=0,Len=2), -4,\n"
                  "                                  5(Idx=7,Len=9)\n");
}

TEST_F(RespArgumentReports, ShowStrangeElementsAsTheyAre) {
  StoreFunction(2, {0, 1, 2}, {-1, -1, 1}, {1, 2, -3});
  ExpectArguments(" syn", "0, 1(Idx=-1,Len=2), 2(Idx=1,Len=-3)\n");
}

TEST_F(RespArgumentReports, ShowALinkWithoutLengths) {
  StoreFunction(1, {1, -2}, {0, 3}, {});
  ExpectArguments("link", "1, -2(Idx=3,Len=1)\n");
}

TEST_F(RespArgumentReports, ShowArgumentsOfFortySixLettersOnOneLine) {
  for (const int type : {1, 2}) {
    StoreSingles(type, {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -1111});
    ExpectArguments(type == 1 ? "link" : " syn",
                    "-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -1111\n");
  }
}

TEST_F(RespArgumentReports, CutArgumentsOfFortySevenLetters) {
  for (const int type : {1, 2}) {
    StoreSingles(type, {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11111});
    ExpectArguments(type == 1 ? "link" : " syn",
                    "-1, -2, -3, -4, -5, -6, -7, -8, -9, -10,\n"
                    "                                  -11111\n");
  }
}

TEST_F(RespArgumentReports, CutArgumentsBehindAFullLine) {
  StoreSingles(1, {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -111, 7});
  ExpectArguments("link",
                  "-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -111,\n"
                  "                                  7\n");
}

TEST_F(RespArgumentReports, CutLongArgumentsOverManyLines) {
  std::vector<vbINT32> arguments;
  for (int id = 1; id <= 30; ++id) arguments.emplace_back(-id);
  StoreSingles(2, arguments);
  ExpectArguments(" syn",
                  "-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11,\n"
                  "                                  -12, -13, -14, -15, -16, -17, -18, -19, -20,\n"
                  "                                  -21, -22, -23, -24, -25, -26, -27, -28, -29,\n"
                  "                                  -30\n");
}

TEST_F(RespArgumentReports, KeepTheLongestArgumentsInOnePiece) {
  StoreFunction(2, {2147483647, -2147483647, 1}, {2147483647, 2147483647, 0},
                {2147483647, 2147483647, 1});
  ExpectArguments(
      " syn",
      "2147483647(Idx=2147483647,Len=2147483647),\n"
      "                                  -2147483647(Idx=2147483647,Len=2147483647), 1\n");
}

TEST_F(RespArgumentReports, StopTheProgramForAnIndexThatIsMissing) {
  for (const int type : {1, 2}) {
    StoreFunction(type, {1, 2}, {0}, {1, 1});
    EXPECT_DEATH(CResp::Dump(study.Pod(), stdout), "vnArg\\.size\\(\\) == vnIndx\\.size\\(\\)");
    std::filesystem::remove(study.LockPath());  // it was the stopped program's
  }
}

TEST_F(RespArgumentReports, StopTheProgramForALengthThatASyntheticResponseMisses) {
  StoreFunction(2, {1, 2}, {0, 0}, {1});
  EXPECT_DEATH(CResp::Dump(study.Pod(), stdout), "vnArg\\.size\\(\\) == vnLength\\.size\\(\\)");
  std::filesystem::remove(study.LockPath());
}

}  // namespace
