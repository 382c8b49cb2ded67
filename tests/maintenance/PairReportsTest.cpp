#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "definition/Auxiliary.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "maintenance/DBUtilities.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/maintenance/DataFiles.h"
#include "tests/support/RawFile.h"
#include "tests/support/Study.h"

// The reports on both files of a study, made from what the files hold byte by byte.

namespace {

/// A number as "%-8x" prints it.
std::string WordText(long value) {
  std::string text;
  for (auto bits = static_cast<std::uint32_t>(value); bits != 0; bits >>= 4) {
    text.insert(text.begin(), "0123456789abcdef"[bits & 0xF]);
  }
  if (text.empty()) text = "0";
  text.resize(8, ' ');
  return "0x" + text;
}

/// A share in percent, rounded.
long Percent(long part, long whole) {
  return whole == 0 ? 0 : (200 * part / whole + 1) / 2;
}

/// What a file holds, counted.
struct Counts {
  explicit Counts(const RawFile& file) : usedBytes(file.heapStart), bytes(file.heapStart) {
    for (const RawBlock& block : file.blocks) {
      bytes += block.length;
      if (block.status == 'N') {
        ++used;
        usedBytes += block.length;
      }
      if (block.status == 'D') ++deleted;
      if (block.status == 'R') ++removed;
      if (!block.checksum) ++mismatches;
    }
    blocks = static_cast<long>(file.blocks.size());
  }

  std::string Text() const {
    return "\nBlocks: Used = " + std::to_string(used) +
           " / Empty = " + std::to_string(deleted + removed) +
           " / Total = " + std::to_string(blocks) +
           " Efficiency = " + std::to_string(Percent(used, blocks)) +
           "%\nBytes: Used = " + std::to_string(usedBytes) +
           " / Empty = " + std::to_string(bytes - usedBytes) +
           " / Total = " + std::to_string(bytes) +
           " Efficiency = " + std::to_string(Percent(usedBytes, bytes)) + "%\n";
  }

  long used = 0;
  long deleted = 0;
  long removed = 0;
  long mismatches = 0;
  long blocks = 0;
  long usedBytes;
  long bytes;
};

std::string FileText(const std::string& path, const RawFile& file) {
  const Counts counts(file);
  return FileReport(path, {.staticArea = std::to_string(file.heapStart - 40),
                           .fileSize = std::to_string(file.bytes.size()),
                           .freeSpace = std::to_string(file.freeSpace),
                           .endOfFile = std::to_string(file.endOfFile),
                           .heapStart = std::to_string(file.heapStart),
                           .highest = std::to_string(file.highest),
                           .blocks = std::to_string(counts.blocks),
                           .freeBlocks = std::to_string(counts.deleted) + "/" +
                                         std::to_string(counts.removed) + " (" +
                                         std::to_string(counts.deleted + counts.removed) + ")"}) +
         FileLockReport();
}

std::string BlockTexts(const RawFile& file) {
  std::string text;
  for (const RawBlock& block : file.blocks) {
    const auto behind = static_cast<std::size_t>(block.address + block.length - 4);
    text += BlockReport({.address = std::to_string(block.address),
                         .length = std::to_string(block.length),
                         .status = block.status,
                         .next = std::to_string(block.next),
                         .objectLength = std::to_string(block.object.size()),
                         .stored = WordText(WordAt(file.bytes, behind)),
                         .calculated = WordText(PlainCRC(block.object)),
                         .matches = block.checksum});
  }
  return text;
}

class PairReports : public testing::Test {
 protected:
  template <class Run>
  static std::string ReportOf(const std::string& path, Run run) {
    const std::string bytes = ReadBytes(path);
    ClearLog();
    run();
    EXPECT_EQ(Hex(ReadBytes(path)), Hex(bytes));
    return LogText();
  }

  static void ExpectReports(const std::string& path) {
    const RawFile file = ReadRawFile(path);
    const std::string totals = Searching(path) + Counts(file).Text();
    EXPECT_EQ(ReportOf(path, [&] { KFileCheck(path); }),
              "\n***** Start -- Data File Check *****\nFile name: " + path + "\n" +
                  SoundHeader(path) + FileText(path, file) + Searching(path) + BlockTexts(file) +
                  Counts(file).Text() + "\n***** End -- Data File Check *****\n");
    EXPECT_EQ(ReportOf(path, [&] { KFileStats(path, true); }),
              "\n***** Start -- Data File Statistics *****\nFile name: " + path +
                  "\n"
                  "VBD Runtime Library Version:  3001\n"
                  "VBD Runtime Library Revision: C\n"
                  "Analyzing " +
                  path +
                  " header...\n"
                  "\tChecking signature...OK\n"
                  "\tChecking the HeapStart value...OK\n"
                  "The file header checks OK!\n\n" +
                  FileText(path, file) + totals + "\n***** End -- Data File Statistics *****\n\n");
  }

  template <class Record>
  void Put(vbINT32 Record::*id, int value = 1) {
    Record record(study.Pod());
    record.*id = value;
    record.PutObject();
  }

  /// The three of a fresh study are there already.
  void PutARecordOfEveryClass() {
    Put(&CInput::m_nID);
    Put(&CResp::m_nID);
    Put(&CAuxiliary::m_nID);
    Put(&CTask::m_nID);
    Put(&CDVar::m_nID);
    Put(&CDResp::m_nID);
    Put(&CDCons::m_nID);
    Put(&CDObj::m_nID);
    Put(&CDLink::m_nID);
    Put(&CDEqn::m_nID);
    Put(&CDSet::m_nID);
    Put(&CResult::m_nID);
    Put(&CMessage::m_nID);
    Put(&CDPoint::m_nTaskID);
    Put(&CIter::m_nTaskID);
    Put(&CApproxModels::m_nTaskID);
    Put(&CRDOE::m_nTaskID);
    Put(&CResidual::m_nTaskID);
    Put(&CRApproxMod::m_nTaskID);
  }

  /// Inputs 2 and 3 leave a deleted and a removed block behind.
  void FreeBlocks() {
    Put(&CInput::m_nID, 2);
    Put(&CInput::m_nID, 3);
    CInput input(study.Pod());
    input.m_nID = 2;
    EXPECT_TRUE(input.DeleteObject());
    input.m_nID = 3;
    EXPECT_TRUE(input.RemoveObject());
  }

  /// Enough keys for a tree of several nodes, some of which are free again.
  void GrowAndShrinkATree() {
    for (int id = 1; id <= 100; ++id) Put(&CDSet::m_nID, id);
    CDSet set(study.Pod());
    for (int id = 1; id <= 60; ++id) {
      set.m_nID = id;
      EXPECT_TRUE(set.RemoveObject());
    }
  }

  Study study;
};

TEST_F(PairReports, OfAFreshStudy) {
  study.Close();
  const Counts data(ReadRawFile(study.DataPath()));
  EXPECT_EQ(data.used, 3);
  EXPECT_EQ(data.blocks, 3);
  ExpectReports(study.DataPath());
  ExpectReports(study.IndexPath());
}

TEST_F(PairReports, OfAStudyWithEveryClassAndFreeAndBadBlocks) {
  PutARecordOfEveryClass();
  FreeBlocks();
  study.Close();
  RawFile data = ReadRawFile(study.DataPath());
  for (long index = 0; index < 22; ++index) {
    EXPECT_EQ(ObjectsOf(data, 1000 * (index + 1)).size(), 1U) << index;
  }
  // The version word of the task.
  PatchBytes(study.DataPath(), ObjectsOf(data, CTask::m_nTASK_ID).begin()->first + 8, "?");
  data = ReadRawFile(study.DataPath());
  const Counts counts(data);
  EXPECT_EQ(counts.used, 22);
  EXPECT_EQ(counts.deleted, 1);
  EXPECT_EQ(counts.removed, 1);
  EXPECT_EQ(counts.mismatches, 1);
  ExpectReports(study.DataPath());
  ExpectReports(study.IndexPath());
}

TEST_F(PairReports, OfTreesWithFreeNodes) {
  GrowAndShrinkATree();
  study.Close();
  EXPECT_GT(Counts(ReadRawFile(study.IndexPath())).removed, 0);
  ExpectReports(study.DataPath());
  ExpectReports(study.IndexPath());
}

}  // namespace
