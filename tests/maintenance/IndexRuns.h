#pragma once

#include <gtest/gtest.h>

#include <string>

#include "definition/Input.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "results/DPoint.h"
#include "results/Message.h"
#include "store/DBI_IO.h"
#include "store/pod.h"
#include "tests/maintenance/RebuildReports.h"

/// A study with the singletons, two Inputs, 40 points in a tree of two levels, and a message; an
/// Input and a message were freed.
class IndexRuns : public StudyRun {
 protected:
  IndexRuns() {
    InStudy([](POD* pod) {
      for (const int id : {1, 2, 3}) StoreInput(pod, id);
      for (int point = 0; point < 40; ++point) StorePoint(pod, point);
      for (const int id : {1, 2}) StoreMessage(pod, id);
      InputOf(pod, 2).RemoveObject();
      MessageOf(pod, 1).DeleteObject();
    });
    keys = KeysOf(index);
    dataBytes = ReadBytes(data);
  }

  template <class Use>
  void InStudy(Use use) {
    OpenDatabase(base);
    {
      const CLock lock(GetPOD(), 0);
      use(GetPOD());
    }
    CloseDatabase();
    ClearLog();
  }

  static CInput InputOf(POD* pod, int id) {
    CInput input(pod);
    input.m_nID = id;
    return input;
  }
  static CMessage MessageOf(POD* pod, int id) {
    CMessage message(pod);
    message.m_nID = id;
    return message;
  }
  static void StoreInput(POD* pod, int id) { InputOf(pod, id).PutObject(); }
  static void StoreMessage(POD* pod, int id) {
    CMessage message = MessageOf(pod, id);
    message.m_Messages = {"all is well"};
    message.PutObject();
  }
  static void StorePoint(POD* pod, int point) {
    CDPoint object(pod);
    object.m_nTaskID = 1;
    object.m_nPointID = point;
    object.m_IDVar = {0.5 * point};
    object.PutObject();
  }

  /// Where the block of message 2 starts.
  long MessageBlock() const { return keys.at(20).begin()->second - 28; }

  void Rebuild() const { KIndexRebuildCheck(base, true); }
  void Compare() const { KIndexRebuildCheck(base, false); }

  // The parts of the reports.

  std::string Start() const {
    return "\n***** Start -- Rebuild Index File *****\nFile name: " + base + "\n";
  }
  std::string Renamed() const {
    return "Renamed original index file (" + index + ") to " + backup + "\n";
  }
  std::string Headers() const { return SoundStart(data) + SoundStart(index); }
  std::string Named() const { return "The original file was renamed to " + backup + "\n"; }
  std::string CompareStart() const {
    return "\n***** Start -- Compare Index and Data Files *****\nFile name: " + base + "\n";
  }
  /// A failure on its way through the run, with the name of the backup told in between.
  std::string FailureOfRebuild(const std::string& what) const {
    return Failure(what) + Named() + "EXCEPTION: " + what + "\n" + kEnd;
  }

  const std::string kEnd = "\n***** End -- Rebuild Index File *****\n\n";
  const std::string kCompareEnd = "\n***** End -- Compare Index and Data Files *****\n\n";
  const Counts counts{{0, 2}, {11, 40}, {14, 1}, {15, 1}, {17, 1}, {20, 1}};
  Keys keys;
  std::string dataBytes;
};
