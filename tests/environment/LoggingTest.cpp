#include "environment/Logging.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

/// Takes up what is logged, in place of the stream that is set.
class LoggedText {
 public:
  LoggedText() { fKLog = open_memstream(&m_text, &m_size); }
  LoggedText(const LoggedText&) = delete;
  LoggedText& operator=(const LoggedText&) = delete;
  ~LoggedText() {
    std::fclose(fKLog);
    fKLog = m_old;
    std::free(m_text);
  }

  std::string Text() {
    std::fflush(fKLog);
    return {m_text, m_size};
  }

 private:
  FILE* m_old = fKLog;
  char* m_text = nullptr;
  std::size_t m_size = 0;
};

TEST(Logging, TheLogIsStandardErrorAtFirst) {
  EXPECT_EQ(fKLog, stderr);
}

TEST(Logging, TextsGoToTheStreamThatIsAssigned) {
  LoggedText log;
  LPrint("%d of %s\n", 3, "four");
  EXPECT_EQ(log.Text(), "3 of four\n");
}

TEST(Logging, ErrorsAndWarningsSaySoAndContinuationsDoNot) {
  LoggedText log;
  LError("(Make Task) : %d variables\n", 0);
  LPrint("     At least %d!\n", 1);
  LWarn("100%%\n");
  EXPECT_EQ(log.Text(), "ERROR: (Make Task) : 0 variables\n     At least 1!\nWARNING: 100%\n");
}

TEST(Logging, TextsAreNotLimitedInLength) {
  LoggedText log;
  const std::string text(100000, 'x');
  LError("%s", text.c_str());
  EXPECT_EQ(log.Text(), "ERROR: " + text);
}

TEST(Logging, NoLineFeedIsAdded) {
  LoggedText log;
  LPrint("one ");
  LPrint("line");
  EXPECT_EQ(log.Text(), "one line");
}

TEST(Logging, ExceptionsTakeALineEach) {
  LoggedText log;
  LNewException("store/pod.cpp", 12, "File open error");
  LException("store/pod.cpp", 34, "File open error");
  LGenException("store/DBI_IO.cpp", 56);
  EXPECT_EQ(log.Text(),
            "NEW EXCEPTION: store/pod.cpp (12): File open error\n"
            "EXCEPTION: store/pod.cpp (34): File open error\n"
            "UNKNOWN EXCEPTION: store/DBI_IO.cpp (56)\n");
}

TEST(Logging, AMessageOfTwoLinesIsLoggedOnOne) {
  LoggedText log;
  LNewException("a.cpp", 1, "Lock violation.\nUnlock it.");
  EXPECT_EQ(log.Text(), "NEW EXCEPTION: a.cpp (1): Lock violation. Unlock it.\n");
}

TEST(Logging, ALongMessageOfAnExceptionIsCut) {
  LoggedText log;
  LException("a.cpp", 1, std::string(100000, 'x').c_str());
  const std::string line = log.Text();
  EXPECT_EQ(line.find("EXCEPTION: a.cpp (1): xxx"), 0u);
  EXPECT_EQ(line.size(), 2048u);
  EXPECT_EQ(line.find('\n'), line.size() - 1);
}

TEST(Logging, MissingNamesAndMessagesAreLeftOut) {
  LoggedText log;
  LNewException(nullptr, 5, nullptr);
  EXPECT_EQ(log.Text(), "NEW EXCEPTION:  (5)\n");
}

TEST(Logging, WithoutAStreamStandardErrorIsUsed) {
  const auto logNowhere = [] {
    fKLog = nullptr;
    LError("still said\n");
    std::_Exit(0);
  };
  EXPECT_EXIT(logNowhere(), testing::ExitedWithCode(0), "ERROR: still said");
}

}  // namespace
