#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <valarray>
#include <vector>

#include "index/KSBKey.h"
#include "results/ApproxModels.h"
#include "store/KestErr.h"
#include "task/DResp.h"
#include "task/DVar.h"
#include "task/Task.h"
#include "tests/support/Bytes.h"
#include "tests/support/Printed.h"
#include "tests/support/Study.h"

/// A study with task 1, its variables and its responses, for the reports of what the run engine
/// stores of it. A report is a function of database and stream.
class ModelStudy : public testing::Test {
 protected:
  using Names = std::vector<std::string>;

  ModelStudy() : task(study.Pod()), vars(study.Pod()), resps(study.Pod()) {
    task.m_nID = vars.m_nID = resps.m_nID = 1;
  }

  /// Stores the task with independent variables and responses of these names.
  void StoreTask(const Names& variables, const Names& responses) {
    vars.m_vstrIndName = variables;
    resps.m_vstrIndName = responses;
    task.PutObject();
    vars.PutObject();
    resps.PutObject();
  }

  /// A model of task 1, iteration 0. Standard errors, t-statistics and P-values are 0.5, 2 and
  /// 0.25.
  CApproxModels ModelOf(int resp, const std::vector<int>& exponents,
                        const std::vector<double>& coefficients) {
    CApproxModels model(study.Pod());
    model.m_nTaskID = 1;
    model.m_nResp = resp;
    model.m_Model = {exponents.data(), exponents.size()};
    model.m_Coefficients = {coefficients.data(), coefficients.size()};
    model.m_StdErrors = std::valarray<double>(0.5, coefficients.size());
    model.m_TStats = std::valarray<double>(2.0, coefficients.size());
    model.m_PValues = std::valarray<double>(0.25, coefficients.size());
    return model;
  }

  template <class Report>
  std::string TextOf(Report report) {
    return Printed([&](std::FILE* stream) { report(study.Pod(), stream); });
  }

  /// That the report throws, and prints nothing.
  template <class Error, class Report>
  void ExpectNoReport(Report report) {
    std::FILE* stream = std::tmpfile();
    EXPECT_THROW(report(study.Pod(), stream), Error);
    EXPECT_EQ(std::ftell(stream), 0);
    std::fclose(stream);
  }

  /// That the report is there no more once one of these objects is missing.
  template <class Report, class... Objects>
  void ExpectToNeed(Report report, Objects&... objects) {
    EXPECT_NO_THROW(TextOf(report));
    const auto needs = [&](vbPersistent& object) {
      SCOPED_TRACE(object.GetVBClassName());
      ASSERT_TRUE(object.RemoveObject());
      ExpectNoReport<CGetObject>(report);
      object.PutObject();
    };
    (needs(objects), ...);
    EXPECT_NO_THROW(TextOf(report));
  }

  /// That the report of an object whose record is damaged isn't printed in part.
  template <class Report>
  void ExpectNoReportOnceDamaged(Report report, const vbPersistent& object) {
    EXPECT_NO_THROW(TextOf(report));
    const long address = object.ObjectAddress();
    study.Close();
    PatchBytes(study.DataPath(), address + 24, "x");
    study.Open();
    ExpectNoReport<CChecksum>(report);
  }

  /// That the report looks at its arguments in the order in which all reports do, and takes the
  /// lock.
  template <class Report>
  void ExpectChecksOfArguments(Report report) {
    EXPECT_THROW(report(nullptr, stdout), CNullPtr);
    EXPECT_THROW(report(study.Pod(), nullptr), CNullPtr);
    ExpectChecksOfDatabase([&](POD* pod) { report(pod, stdout); });
  }

  /// The same for an operation that takes a database.
  template <class Operation>
  void ExpectChecksOfDatabase(Operation operation) {
    EXPECT_THROW(operation(nullptr), CNullPtr);
    POD pod(study.folder / "other.ksb");
    EXPECT_THROW(operation(&pod), CNoIndex);
    KSBKey key;
    pod.Open(study.folder / "other.ksb", study.folder / "other.kx", key, 32, vbReadWrite, 2, 0, 25);
    EXPECT_THROW(operation(&pod), CNoIndex);
    std::filesystem::create_directory(study.LockPath());
    EXPECT_THROW(operation(study.Pod()), CFileLock);
    std::filesystem::remove(study.LockPath());
    study.Pod()->CloseIndex();
    EXPECT_THROW(operation(study.Pod()), CNullPtr);
    study.Pod()->CloseDataFile();
    EXPECT_THROW(operation(study.Pod()), CNullPtr);
  }

  inline static const std::string reportEnd =
      "================================================================================\n"
      "\n";

  Study study;
  CTask task;
  CDVar vars;
  CDResp resps;
};
