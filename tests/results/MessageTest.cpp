#include "results/Message.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/RawFile.h"
#include "tests/support/StoredRecord.h"
#include "tests/support/Study.h"

namespace {

using Texts = std::vector<std::string>;

class Messages : public testing::Test {
 protected:
  CMessage Of(int task, const Texts& texts) {
    CMessage messages(study.Pod());
    messages.m_nID = task;
    messages.m_Messages = texts;
    return messages;
  }

  CMessage Stored(int task) {
    CMessage messages(study.Pod());
    messages.m_nID = task;
    EXPECT_TRUE(messages.GetObject());
    return messages;
  }

  long Store(const std::string& record) { return StoreRecord(study.Pod(), 21000, record); }

  CMessage ReadAt(long address) {
    CMessage messages(study.Pod());
    messages.Read(address);
    return messages;
  }

  std::string StoredBytes(int task, const Texts& texts) {
    CMessage messages = Of(task, texts);
    messages.PutObject();
    return Hex(StoredRecord(messages));
  }

  Study study;
};

// ---- The object ----

TEST_F(Messages, AreNoneWhenNew) {
  const POD* const pod = study.Pod();
  for (const CMessage& messages : {CMessage(study.Pod()), CMessage(pod)}) {
    EXPECT_EQ(messages.m_nID, 0);
    EXPECT_TRUE(messages.m_Messages.empty());
    EXPECT_EQ(messages.ObjectAddress(), 0);
  }
  EXPECT_EQ(CMessage(study.Pod()).Database(), pod);
  EXPECT_EQ(CMessage(pod).Database(), pod);
}

TEST_F(Messages, HaveTheirClassConstants) {
  EXPECT_EQ(CMessage::m_nMESSAGE_VER, 1);
  EXPECT_EQ(CMessage::m_nMESSAGE_INDX, 20);
  EXPECT_EQ(CMessage::m_nMESSAGE_ID, 21000);
  EXPECT_EQ(CMessage::m_strCLASS_NAME, "CMessage");
  CMessage messages(study.Pod());
  EXPECT_EQ(messages.GetVBClassID(), 21000);
  EXPECT_EQ(messages.GetVBClassIndex(), 20U);
  EXPECT_EQ(messages.GetVBClassName(), "CMessage");
  EXPECT_EQ(messages.GetVBClassVer(), 1);
}

TEST_F(Messages, DefaultsClearTaskAndList) {
  CMessage messages = Of(7, {"one", "two"});
  messages.SetDefaultAttributes();
  EXPECT_EQ(messages.m_nID, 0);
  EXPECT_TRUE(messages.m_Messages.empty());
  EXPECT_EQ(messages.Database(), study.Pod());
}

TEST_F(Messages, CopyTakesTaskAndListAndKeepsTheConnection) {
  CMessage source(static_cast<POD*>(nullptr));
  source.m_nID = 7;
  source.m_Messages = {"one", "two"};
  CMessage copy(study.Pod());
  copy.m_nID = 1;
  copy.m_Messages = {"old"};
  copy.PutObject();
  const long address = copy.ObjectAddress();
  copy.Copy(source);
  EXPECT_EQ(copy.m_nID, 7);
  EXPECT_EQ(copy.m_Messages, (Texts{"one", "two"}));
  EXPECT_EQ(copy.Database(), study.Pod());
  EXPECT_EQ(copy.ObjectAddress(), address);
}

TEST_F(Messages, AreUsableAsKeysWithAPositiveTask) {
  CMessage messages(study.Pod());
  char text[64];
  for (const int task : {-2147483647 - 1, -1, 0}) {
    messages.m_nID = task;
    EXPECT_FALSE(messages.CheckKey()) << task;
    EXPECT_THROW(messages.PutObject(), CInvalidKey) << task;
  }
  for (const auto& [task, key] :
       std::map<int, std::string>{{1, "          1"}, {2147483647, " 2147483647"}}) {
    messages.m_nID = task;
    EXPECT_TRUE(messages.CheckKey()) << task;
    EXPECT_EQ(messages.MakeKey(text), text);
    EXPECT_EQ(std::string(text), key);
  }
}

TEST_F(Messages, AreFoundInTheirTreeByTask) {
  CMessage twelve = Of(12, {});
  CMessage three = Of(3, {"text"});
  twelve.PutObject();
  three.PutObject();
  study.Close();
  EXPECT_EQ(ReadRawTree(ReadRawFile(study.IndexPath()), 20),
            (std::map<std::string, long>{{"          3", three.ObjectAddress()},
                                         {"         12", twelve.ObjectAddress()}}));
  EXPECT_EQ(FaultOfClass(ReadRawFile(study.DataPath()), ReadRawFile(study.IndexPath()), 21000), "");
}

// ---- The record ----

const std::string threeMessages =
    "07 00 00 00 "                                                // task
    "03 00 00 00 "                                                // count
    "0A 00 00 00 45 52 52 4F 52 3A 20 62 61 64 "                  // "ERROR: bad"
    "01 00 00 00 00 "                                             // ""
    "0F 00 00 00 57 41 52 4E 49 4E 47 20 6E 6F 74 20 6F 6B 21 ";  // "WARNING not ok!"
const Texts threeTexts = {"ERROR: bad", "", "WARNING not ok!"};

TEST_F(Messages, OfThreeTextsByteForByte) {
  EXPECT_EQ(Of(7, threeTexts).ObjectLength(), 50U);
  EXPECT_EQ(StoredBytes(7, threeTexts), Hex(Bytes("01 00 00 00" + threeMessages)));
}

TEST_F(Messages, OfATaskWithoutAnyTakeFiftyTwoBytes) {
  CMessage messages = Of(7, {});
  EXPECT_EQ(messages.ObjectLength(), 12U);
  messages.PutObject();
  study.Close();
  const long address = messages.ObjectAddress();
  const std::string object =
      Bytes("08 52 00 00" + HexWord(address) + "01 00 00 00 07 00 00 00 00 00 00 00");
  EXPECT_EQ(HexAt(study.DataPath(), static_cast<std::size_t>(address) - 28, 52),
            Hex(Bytes("FE FE FE FE 34 00 00 00 4E 00 00 00 00 00 00 00 "
                      "00 00 00 00 00 00 00 00 00 00 00 00") +
                object + ChecksumOf(object)));
}

TEST_F(Messages, OfVersionOneAreReadInFull) {
  const long address = Store(Bytes("01 00 00 00" + threeMessages));
  const CMessage messages = ReadAt(address);
  EXPECT_EQ(messages.m_nID, 7);
  EXPECT_EQ(messages.m_Messages, threeTexts);
  EXPECT_EQ(messages.ObjectAddress(), address);
}

TEST_F(Messages, OfANewerVersionAreReadAsFarAsTheyAreKnown) {
  const CMessage messages = ReadAt(Store(Bytes("02 00 00 00" + threeMessages + "FF FF")));
  EXPECT_EQ(messages.m_nID, 7);
  EXPECT_EQ(messages.m_Messages, threeTexts);
}

TEST_F(Messages, ReplaceThoseThatTheObjectHeld) {
  CMessage messages = Of(7, threeTexts);
  messages.Read(Store(Bytes("01 00 00 00 08 00 00 00 00 00 00 00")));
  EXPECT_EQ(messages.m_nID, 8);
  EXPECT_TRUE(messages.m_Messages.empty());
}

TEST_F(Messages, AreReadBackInOrderAfterReopening) {
  Of(7, {"b", " ", "", "a", "b"}).PutObject();
  study.Reopen();
  EXPECT_EQ(Stored(7).m_Messages, (Texts{"b", " ", "", "a", "b"}));
}

TEST_F(Messages, ChangeTheirRecordWithEveryField) {
  const std::string before = StoredBytes(7, {"one", "two"});
  EXPECT_NE(StoredBytes(8, {"one", "two"}), before);
  EXPECT_NE(StoredBytes(7, {"one", "twp"}), before);
  EXPECT_NE(StoredBytes(7, {"two", "one"}), before);
  EXPECT_NE(StoredBytes(7, {"onetwo"}), before);
}

TEST_F(Messages, TakeTheLengthOfTheirTexts) {
  const CLock lock(study.Pod(), 0);
  std::mt19937 random(20260402);
  for (int round = 1; round <= 200; ++round) {
    SCOPED_TRACE(round);
    CMessage messages = Of(round, Texts(random() % 40));
    std::size_t length = 12;
    for (std::string& text : messages.m_Messages) {
      text.assign(random() % 3 == 0 ? random() % 3 : random() % 200,
                  static_cast<char>(1 + random() % 255));
      length += text.empty() ? 5 : 4 + text.size();
    }
    EXPECT_EQ(messages.ObjectLength(), length);
    messages.PutObject();
    EXPECT_EQ(StoredRecord(messages).size(), length);
    EXPECT_EQ(ReadAt(messages.ObjectAddress()).m_Messages, messages.m_Messages);
  }
}

TEST_F(Messages, ThatEndTooEarlyAreCorrupt) {
  const CLock lock(study.Pod(), 0);
  const std::string record = Bytes("01 00 00 00" + threeMessages);
  for (std::size_t size = 0; size < record.size(); ++size) {
    SCOPED_TRACE(size);
    const long address = Store(record.substr(0, size));
    EXPECT_THROW(ReadAt(address), CFileCorrupt);
  }
}

TEST_F(Messages, WithCountsThatTheRecordCannotHoldAreCorrupt) {
  const std::string record = Bytes("01 00 00 00" + threeMessages);
  for (const std::size_t place : {8U, 12U, 26U, 31U}) {  // the texts, and the length of each
    for (const char* count : {"7F 00 00 00", "00 00 00 20", "FF FF FF 7F", "FF FF FF FF"}) {
      SCOPED_TRACE(std::to_string(place) + " " + count);
      std::string hostile = record;
      const long address = Store(hostile.replace(place, 4, Bytes(count)));
      EXPECT_THROW(ReadAt(address), CFileCorrupt);
    }
  }
}

TEST_F(Messages, OfAnotherClassAreRefused) {
  const long address = StoreRecord(study.Pod(), 22000, Bytes("01 00 00 00" + threeMessages));
  EXPECT_THROW(ReadAt(address), CBadClassID);
}

TEST_F(Messages, WithAWrongChecksumAreRefused) {
  CMessage messages = Of(7, threeTexts);
  messages.PutObject();
  study.Close();
  PatchBytes(study.DataPath(), messages.ObjectAddress() + 24, "e");
  study.Open();
  CMessage damaged = Of(7, {});
  EXPECT_THROW(damaged.GetObject(), CChecksum);
}

// ---- Kinds ----

TEST_F(Messages, AreOfTheKindOfTheirFirstWord) {
  struct Case {
    std::string text;
    int errors, warnings, exceptions;
  };
  const Case cases[] = {
      {"ERROR", 1, 0, 0},
      {"ERROR: no program", 1, 0, 0},
      {"ERRORS", 1, 0, 0},
      {"ERRO", 0, 0, 0},
      {"ERRO R", 0, 0, 0},
      {"error: no program", 0, 0, 0},
      {"Error: no program", 0, 0, 0},
      {" ERROR", 0, 0, 0},
      {"an ERROR", 0, 0, 0},
      {"WARN", 0, 1, 0},
      {"WARNING: no bound", 0, 1, 0},
      {"WARNED", 0, 1, 0},
      {"WAR", 0, 0, 0},
      {"warning", 0, 0, 0},
      {"Warning", 0, 0, 0},
      {"no WARNING", 0, 0, 0},
      {"EXCEPTION", 0, 0, 1},
      {"EXCEPTION caught", 0, 0, 1},
      {"EXCEPTIO", 0, 0, 0},
      {"exception", 0, 0, 0},
      {"\nEXCEPTION", 0, 0, 0},
      {"WARN ERROR EXCEPTION", 0, 1, 0},
      {"", 0, 0, 0},
  };
  for (const Case& one : cases) {
    const CMessage messages = Of(1, {one.text});
    EXPECT_EQ(messages.GetNumErrors(), one.errors) << one.text;
    EXPECT_EQ(messages.GetNumWarnings(), one.warnings) << one.text;
    EXPECT_EQ(messages.GetNumExceptions(), one.exceptions) << one.text;
  }
}

TEST_F(Messages, AreCountedByKind) {
  const CMessage messages = Of(1, {"ERROR 1", "WARN 1", "text", "ERROR 2", "EXCEPTION 1",
                                   "WARNING 2", "ERROR 3", "", "ERROR 3", "WARN 3", "EXCEPTION 2"});
  EXPECT_EQ(messages.GetNumErrors(), 4);
  EXPECT_EQ(messages.GetNumWarnings(), 3);
  EXPECT_EQ(messages.GetNumExceptions(), 2);
  const CMessage none = Of(1, {});
  EXPECT_EQ(none.GetNumErrors(), 0);
  EXPECT_EQ(none.GetNumWarnings(), 0);
  EXPECT_EQ(none.GetNumExceptions(), 0);
}

// ---- Removal ----

TEST_F(Messages, RemovalEmptiesTheListAndTheStoredLog) {
  Of(6, {"stays"}).PutObject();
  Of(7, threeTexts).PutObject();
  CMessage messages = Stored(7);
  messages.RemoveAll();
  EXPECT_EQ(messages.m_nID, 7);
  EXPECT_TRUE(messages.m_Messages.empty());
  EXPECT_TRUE(Stored(7).m_Messages.empty());
  EXPECT_EQ(Stored(6).m_Messages, (Texts{"stays"}));
  EXPECT_EQ(messages.CountObjects(), 2);
}

TEST_F(Messages, RemovalStoresAnEmptyLogWhereThereWasNone) {
  CMessage messages = Of(7, {"not stored"});
  messages.RemoveAll();
  EXPECT_TRUE(Stored(7).m_Messages.empty());
}

TEST_F(Messages, RemovalWorksUnderTheLockOfTheDatabase) {
  CMessage messages = Of(7, {"kept"});
  std::filesystem::create_directory(study.LockPath());
  EXPECT_THROW(messages.RemoveAll(), CFileLock);
  EXPECT_EQ(messages.m_Messages, (Texts{"kept"}));
  std::filesystem::remove(study.LockPath());
}

TEST_F(Messages, RemovalWithoutADatabaseIsANullPointer) {
  CMessage messages(static_cast<POD*>(nullptr));
  messages.m_nID = 7;
  EXPECT_THROW(messages.RemoveAll(), CNullPtr);
}

}  // namespace
