#include "store/KestErr.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "environment/Logging.h"

namespace {

struct LogEntry {
  std::string function, file, text;
  int line;
};

std::vector<LogEntry> logEntries;

}  // namespace

// These stand in for the environment's functions of the same names.
void LNewException(const char* file, int line, const char* message) {
  logEntries.push_back({"LNewException", file, message, line});
}

void LException(const char* file, int line, const char* what) {
  logEntries.push_back({"LException", file, what, line});
}

void LGenException(const char* file, int line) {
  logEntries.push_back({"LGenException", file, "", line});
}

namespace {

class KestErr : public testing::Test {
 protected:
  void SetUp() override { logEntries.clear(); }
};

struct Failure {
  std::string what;
  std::function<void()> raise;
};

template <class Error>
Failure Of(const char* what) {
  return {what, [] { throw Error("source.cpp", 12); }};
}

const std::vector<Failure> engineFailures = {
    Of<CAccessViolation>("Access Violation"),
    Of<CAddKey>("Could not add key"),
    Of<CBadClassID>("Bad class ID"),
    Of<CBadObjectAddress>("Bad object address"),
    Of<CBlockAlloc>("Block allocation"),
    Of<CChecksum>("Checksum error"),
    Of<CDatabaseOpen>("Database already open"),
    Of<CDuplicateEntry>("Duplicate entry"),
    Of<CFileClose>("File close error"),
    Of<CFileCorrupt>("File corrupt"),
    Of<CFileCreation>("File creation error"),
    Of<CFileExists>("File already exists"),
    Of<CFileInsertion>("Error inserting database entry"),
    Of<CFileLock>("Error locking the file"),
    Of<CFileNotReady>("File not ready"),
    Of<CFileNotWriteable>("File not writeable"),
    Of<CFileOpen>("File open error"),
    Of<CFilePosition>("Cannot obtain the current file position"),
    Of<CFileRead>("File read error"),
    Of<CFileRemove>("File not removed"),
    Of<CFileSeek>("FileSeekError"),
    Of<CFileUnlock>("Error release the file lock"),
    Of<CFileWrite>("File write error"),
    Of<CFindResult>("Could not find Result object"),
    Of<CGetObject>("Could not get object"),
    Of<CIndexError>("Index file does not match the data file"),
    Of<CInvalidArgument>("Function/method object is invalid"),
    Of<CInvalidKey>("Invalid key"),
    Of<CInvalidSubject>("Subject type is invalid"),
    Of<CInvalidType>("Object type is invalid"),
    Of<CLockViolation>(
        "Lock violation.\nYou may have to manually unlock the database using the Kestrelon GUI."),
    Of<CMakeTask>("Task could not be created - data error found"),
    Of<CMemoryAlloc>("Memory allocation error"),
    Of<CNoDatabaseOpen>("No database open"),
    Of<CNoFileExists>("No file exists"),
    Of<CNoIndex>("No index"),
    Of<CNoIndexSystem>("Indexing subsystem missing"),
    Of<CNoObjectsExist>("No objects exist"),
    Of<CNonASCIIDatabase>(
        "Database filename contains invalid characters.  Use ASCII characters only."),
    Of<CNullPtr>("Null pointer found"),
    Of<CObjectNotAdded>("Object not added"),
    Of<CObjectNotFound>("Object not found"),
    Of<CObjectNotRemoved>("Object not removed"),
    Of<CReadOnlyFile>("ReadOnlyFile"),
    Of<CRecordLock>("Error locking a record"),
    Of<CRecordLockAccess>("The record lock cannot be accessed"),
    Of<CStackFull>("Stack full"),
    Of<CSync>("Synchronization error"),
    Of<CWrongFileType>("Wrong file type"),
};

/// The text of the failure when `Base` catches it, else a word of what did.
template <class Base>
std::string CaughtAs(const Failure& failure) {
  try {
    failure.raise();
  } catch (const Base& error) {
    return error.what();
  } catch (...) {
    return "<something else>";
  }
  return "<nothing>";
}

void ExpectEntry(const LogEntry& entry, const char* function, const char* text, int line) {
  EXPECT_EQ(entry.function, function);
  EXPECT_EQ(entry.text, text);
  EXPECT_EQ(entry.line, line);
  EXPECT_TRUE(entry.file.ends_with("KestErrTest.cpp")) << entry.file;
}

int originLine = 0;
const void* thrownObject = nullptr;

void ThrowFileOpen() {
  originLine = __LINE__ + 1;
  Throw<CFileOpen>();
}

void ThrowOutOfRange() {
  throw std::out_of_range("beyond the end");
}

void ThrowNumber() {
  throw 42;
}

void Innermost(void (*fail)()) try { fail(); } catch (const std::exception& error) {
  thrownObject = &error;
  kestdb::LogAndRethrow(__FILE__, 101);
} catch (...) {
  kestdb::LogAndRethrow(__FILE__, 101);
}

int innerLine = 0, middleLine = 0, outerLine = 0;

void Inner(void (*fail)()) try {
  innerLine = __LINE__ + 3;
  fail();
}
LOG_AND_RETHROW

void Middle(void (*fail)()) try {
  middleLine = __LINE__ + 3;
  Inner(fail);
}
LOG_AND_RETHROW

void Outer(void (*fail)()) try {
  outerLine = __LINE__ + 3;
  Middle(fail);
}
LOG_AND_RETHROW

int Answer() try { return 42; }
LOG_AND_RETHROW

}  // namespace

TEST_F(KestErr, FortyNineClassesAreCaughtAsEngineErrorsWithTheirTexts) {
  EXPECT_EQ(engineFailures.size(), 49u);
  for (const Failure& failure : engineFailures) {
    EXPECT_EQ(CaughtAs<CEngErr>(failure), failure.what);
    EXPECT_EQ(CaughtAs<CKestErr>(failure), failure.what);
    EXPECT_EQ(CaughtAs<std::exception>(failure), failure.what);
  }
}

TEST_F(KestErr, DiscreteSetErrorIsNoEngineError) {
  const Failure failure = Of<CDiscreteSetErr>("DiscreteSetErr");
  EXPECT_EQ(CaughtAs<CEngErr>(failure), "<something else>");
  EXPECT_EQ(CaughtAs<CKestErr>(failure), "DiscreteSetErr");
  EXPECT_EQ(CaughtAs<std::exception>(failure), "DiscreteSetErr");
}

TEST_F(KestErr, SiblingsDoNotCatchEachOther) {
  EXPECT_EQ(CaughtAs<CFileClose>(Of<CFileOpen>("")), "<something else>");
  EXPECT_EQ(CaughtAs<CDiscreteSetErr>(Of<CFileOpen>("")), "<something else>");
}

TEST_F(KestErr, EveryClassLogsItselfOnce) {
  for (const Failure& failure : engineFailures) {
    logEntries.clear();
    CaughtAs<CEngErr>(failure);
    ASSERT_EQ(logEntries.size(), 1u) << failure.what;
    EXPECT_EQ(logEntries[0].function, "LNewException");
    EXPECT_EQ(logEntries[0].file, "source.cpp");
    EXPECT_EQ(logEntries[0].line, 12);
    EXPECT_EQ(logEntries[0].text, failure.what);
  }
}

TEST_F(KestErr, KeepsFileLineAndMessage) {
  const char* const file = "store/pod.cpp";
  const CEngErr error(file, 77, "Something else");
  EXPECT_EQ(error.file, file);
  EXPECT_EQ(error.line, 77);
  EXPECT_STREQ(error.what(), "Something else");
}

TEST_F(KestErr, NullFileIsNotLogged) {
  const CFileRead error(nullptr, 5);
  EXPECT_TRUE(logEntries.empty());
  EXPECT_STREQ(error.what(), "File read error");
  EXPECT_EQ(error.file, nullptr);
  EXPECT_EQ(error.line, 5);
}

TEST_F(KestErr, NullMessageIsEmpty) {
  EXPECT_STREQ(CKestErr("source.cpp", 1, nullptr).what(), "");
}

TEST_F(KestErr, LongMessageIsCutTo511Characters) {
  const std::string text(600, 'x');
  EXPECT_EQ(CKestErr("source.cpp", 1, text.c_str()).what(), std::string(511, 'x'));
  EXPECT_EQ(CEngErr("source.cpp", 1, text.c_str()).what(), std::string(511, 'x'));
}

TEST_F(KestErr, MessageOf511CharactersIsWhole) {
  const std::string text = std::string(510, 'x') + "y";
  EXPECT_EQ(CKestErr("source.cpp", 1, text.c_str()).what(), text);
}

TEST_F(KestErr, CopyHoldsItsOwnMessageAndIsNotLogged) {
  static_assert(std::is_nothrow_copy_constructible_v<CFileOpen>);
  static_assert(std::is_nothrow_copy_assignable_v<CFileOpen>);
  const CFileOpen error("source.cpp", 3);
  const CFileOpen copy = error;
  EXPECT_EQ(logEntries.size(), 1u);
  EXPECT_STREQ(copy.what(), "File open error");
  EXPECT_EQ(copy.what(), copy.message);
  EXPECT_EQ(copy.line, 3);
}

TEST_F(KestErr, ThrowNamesTheLineOfItsCaller) {
  EXPECT_THROW(ThrowFileOpen(), CFileOpen);
  ASSERT_EQ(logEntries.size(), 1u);
  ExpectEntry(logEntries[0], "LNewException", "File open error", originLine);
}

TEST_F(KestErr, FailureThreeFunctionsDeepLeavesItsPath) {
  EXPECT_THROW(Outer(ThrowFileOpen), CFileOpen);
  ASSERT_EQ(logEntries.size(), 4u);
  ExpectEntry(logEntries[0], "LNewException", "File open error", originLine);
  ExpectEntry(logEntries[1], "LException", "File open error", innerLine);
  ExpectEntry(logEntries[2], "LException", "File open error", middleLine);
  ExpectEntry(logEntries[3], "LException", "File open error", outerLine);
}

TEST_F(KestErr, StandardExceptionLeavesItsPath) {
  EXPECT_THROW(Outer(ThrowOutOfRange), std::out_of_range);
  ASSERT_EQ(logEntries.size(), 3u);
  ExpectEntry(logEntries[0], "LException", "beyond the end", innerLine);
  ExpectEntry(logEntries[2], "LException", "beyond the end", outerLine);
}

TEST_F(KestErr, UnknownExceptionLeavesItsPathWithoutText) {
  int caught = 0;
  try {
    Outer(ThrowNumber);
  } catch (int number) {
    caught = number;
  }
  EXPECT_EQ(caught, 42);
  ASSERT_EQ(logEntries.size(), 3u);
  ExpectEntry(logEntries[0], "LGenException", "", innerLine);
  ExpectEntry(logEntries[2], "LGenException", "", outerLine);
}

TEST_F(KestErr, TheVeryObjectIsThrownOn) {
  const void* caughtObject = nullptr;
  try {
    Innermost(ThrowFileOpen);
  } catch (const std::exception& error) {
    caughtObject = &error;
  }
  EXPECT_NE(caughtObject, nullptr);
  EXPECT_EQ(caughtObject, thrownObject);
}

TEST_F(KestErr, SuccessIsNotLogged) {
  EXPECT_EQ(Answer(), 42);
  EXPECT_TRUE(logEntries.empty());
}
