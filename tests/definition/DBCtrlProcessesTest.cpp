#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "definition/DBCtrl.h"
#include "store/DBI_IO.h"
#include "tests/support/OtherProcess.h"
#include "tests/support/StudyCheck.h"
#include "tests/support/TempFolder.h"

// Several real processes that take IDs of one study.

namespace {

using namespace std::chrono_literals;

constexpr int kProcesses = 2;
constexpr int kIDs = 200;  // for each process

class IDsOfProcesses : public testing::Test {
 protected:
  std::string Base() const { return folder / "study"; }
  std::string ListPath(int process) const { return folder / ("ids" + std::to_string(process)); }

  void TakeIDs(int process) const {
    std::ofstream list(ListPath(process));
    for (int i = 0; i < kIDs; ++i) {
      list << CDBCtrl(GetPOD()).GetInputID(true) << '\n';
      std::this_thread::sleep_for(1ms);  // leaves the lock to the other one
    }
  }

  std::vector<int> TakenIDs(int process) const {
    std::ifstream list(ListPath(process));
    std::vector<int> ids;
    for (int id = 0; list >> id;) ids.push_back(id);
    return ids;
  }

  TempFolder folder;
};

TEST_F(IDsOfProcesses, AreAllDifferent) {
  InOtherProcess([this] {
    OpenDatabase(Base());
    CDBCtrl(GetPOD()).PutObject();
    CloseDatabase();
  });
  std::vector<std::unique_ptr<OtherProcess>> processes;
  for (int process = 0; process < kProcesses; ++process) {
    processes.push_back(
        std::make_unique<OtherProcess>([this, process](const OtherProcess::Pause& pause) {
          OpenDatabase(Base());
          pause();
          TakeIDs(process);
          CloseDatabase();
        }));
  }
  for (const auto& process : processes) process->Go();
  for (const auto& process : processes) process->AwaitEnd();

  std::set<int> taken;
  for (int process = 0; process < kProcesses; ++process) {
    const std::vector<int> ids = TakenIDs(process);
    EXPECT_EQ(ids.size(), kIDs);
    taken.insert(ids.begin(), ids.end());
  }
  EXPECT_EQ(taken.size(), kProcesses * kIDs);
  EXPECT_EQ(*taken.begin(), 1);
  EXPECT_EQ(*taken.rbegin(), kProcesses * kIDs);
  EXPECT_EQ(FaultsOfStudy(Base()), "");
}

}  // namespace
