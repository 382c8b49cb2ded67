#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "index/KSBKey.h"
#include "store/KestErr.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

// The reports of a task's smaller tables: how tests take them, and what holds for each.

namespace {

const std::string reportEnd =
    "================================================================================\n"
    "\n";

template <class Table>
std::string ReportOf(POD* pod, int task) {
  return Printed([&](std::FILE* stream) { Table::Dump(pod, stream, task); });
}

/// That the report throws, and prints nothing.
template <class Table, class Error>
void ExpectNoReport(POD* pod, int task) {
  std::FILE* stream = std::tmpfile();
  EXPECT_THROW(Table::Dump(pod, stream, task), Error);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

template <class Table>
class TaskTableReport : public testing::Test {
 protected:
  Table Store(int task) {
    Table table(study.Pod());
    table.m_nID = task;
    table.PutObject();
    return table;
  }

  Study study;
};

TYPED_TEST_SUITE_P(TaskTableReport);

TYPED_TEST_P(TaskTableReport, OfATaskWithoutTheTableIsEmpty) {
  this->Store(2);
  for (const int task : {1, 3, 0, -1, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(ReportOf<TypeParam>(this->study.Pod(), task), "") << task;
  }
}

TYPED_TEST_P(TaskTableReport, IsWhollyInTheFileWhenDone) {
  this->Store(1);
  const std::string path = this->study.folder / "report";
  const std::string otherPath = this->study.folder / "other";
  std::FILE* stream = std::fopen(path.c_str(), "w");
  std::FILE* other = std::fopen(otherPath.c_str(), "w");
  std::fprintf(other, "waiting");
  TypeParam::Dump(this->study.Pod(), stream, 1);
  EXPECT_TRUE(ReadBytes(path).ends_with(reportEnd));
  EXPECT_EQ(ReadBytes(otherPath), "waiting");
  std::fclose(stream);
  std::fclose(other);
}

TYPED_TEST_P(TaskTableReport, OfADamagedTableIsNotPrinted) {
  const TypeParam table = this->Store(1);
  this->study.Close();
  PatchBytes(this->study.DataPath(), table.ObjectAddress() + 16, "x");
  this->study.Open();
  ExpectNoReport<TypeParam, CChecksum>(this->study.Pod(), 1);
}

TYPED_TEST_P(TaskTableReport, NeedsADatabaseAndAStream) {
  ExpectNoReport<TypeParam, CNullPtr>(nullptr, 1);
  EXPECT_THROW(TypeParam::Dump(this->study.Pod(), nullptr, 1), CNullPtr);
}

TYPED_TEST_P(TaskTableReport, WithoutIndexingIsRefusedBeforeMissingFilesAreTold) {
  POD pod(this->study.folder / "other.ksb");
  ExpectNoReport<TypeParam, CNoIndex>(&pod, 1);
  KSBKey key;
  pod.Open(this->study.folder / "other.ksb", this->study.folder / "other.kx", key, 32, vbReadWrite,
           2, 0, 25);
  ExpectNoReport<TypeParam, CNoIndex>(&pod, 1);
}

TYPED_TEST_P(TaskTableReport, WithoutADataFileIsANullPointer) {
  this->study.Pod()->CloseDataFile();
  ExpectNoReport<TypeParam, CNullPtr>(this->study.Pod(), 1);
}

TYPED_TEST_P(TaskTableReport, WithoutAnIndexFileIsANullPointer) {
  this->study.Pod()->CloseIndex();
  ExpectNoReport<TypeParam, CNullPtr>(this->study.Pod(), 1);
}

TYPED_TEST_P(TaskTableReport, IsPrintedUnderTheLockOnly) {
  this->Store(1);
  std::filesystem::create_directory(this->study.LockPath());
  ExpectNoReport<TypeParam, CFileLock>(this->study.Pod(), 1);
  std::filesystem::remove(this->study.LockPath());
}

REGISTER_TYPED_TEST_SUITE_P(TaskTableReport, OfATaskWithoutTheTableIsEmpty,
                            IsWhollyInTheFileWhenDone, OfADamagedTableIsNotPrinted,
                            NeedsADatabaseAndAStream,
                            WithoutIndexingIsRefusedBeforeMissingFilesAreTold,
                            WithoutADataFileIsANullPointer, WithoutAnIndexFileIsANullPointer,
                            IsPrintedUnderTheLockOnly);

}  // namespace
