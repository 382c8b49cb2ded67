#include "tests/fuzz/FuzzedStudy.h"

#include <filesystem>
#include <utility>

#include "environment/Logging.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/support/Bytes.h"

FuzzedStudy& FuzzedStudy::Instance() {
  static FuzzedStudy study;
  return study;
}

FuzzedStudy::FuzzedStudy()
    : base_(sound_.Folder() / "fuzzed"), nowhere_(std::fopen("/dev/null", "w")) {
  fKLog = nowhere_;
}

void FuzzedStudy::Write(const FilePair& files) {
  for (const char* left : {".lck", ".kx.old", ".kx.new", ".ksb.new"}) {
    std::filesystem::remove_all(base_ + left);
  }
  WriteBytes(DataPath(), files.data);
  WriteBytes(IndexPath(), files.index);
}

void FuzzedStudy::CheckTraces() const {
  Require(!IsOpen(), "a study is left open");
  Require(!std::filesystem::exists(base_ + ".lck"), "the lock is left behind");
}

void CloseInAnyCase() {
  for (int i = 0; i < 2 && IsOpen(); ++i) Try([] { CloseDatabase(); });
  Require(!IsOpen(), "the study can't be closed");
}
