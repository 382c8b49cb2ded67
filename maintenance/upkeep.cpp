#include "maintenance/upkeep.h"

#include <cstdio>
#include <utility>

#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/firstfailure.h"
#include "store/layout.h"
#include "store/pod.h"

namespace kestdb {

EndLine::~EndLine() {
  LPrint("%s", text_);
}

UpkeepFile::~UpkeepFile() {
  FirstFailure ignored;
  ignored.Run([this] { Unlock(); });
  file_.Abandon();
}

void UpkeepFile::Lock() {
  NSFLock(file_.Stream());
  locked_ = true;
}

void UpkeepFile::Unlock() {
  if (!locked_) return;
  locked_ = false;
  NSFUnlock(file_.Stream());
}

UpkeepStudy::~UpkeepStudy() {
  FirstFailure ignored;
  ignored.Run([this] { Unlock(); });
  ignored.Run([this] { Close(); });
}

void UpkeepStudy::Open(const std::string& dataPath, const std::string& indexPath) {
  KSBKey key;
  const auto open = [&] {
    pod_ = nullptr;
    pod_ = &freshPod_();
    pod_->Open(dataPath, indexPath, key, kTreeOrder, vbReadWrite, 1, 0, kTrees);
  };
  open();
  RequireCurrentRevision(*pod_->DataFile(), UpkeepRole::Data);
  RequireCurrentRevision(*pod_->IndexFile(), UpkeepRole::Index);
  if (COSUtil::IsWin9x()) {
    pod_->Close();
    open();
  }
  // Under a lock of the caller's, the header of a new index is in memory alone. PreCheck reads it.
  pod_->IndexFile()->Flush();
}

void UpkeepStudy::Lock() {
  NSFLock(pod_->DataFile()->Stream());
  dataLocked_ = true;
  NSFLock(pod_->IndexFile()->Stream());
  indexLocked_ = true;
}

void UpkeepStudy::Unlock() {
  FirstFailure failure;
  if (std::exchange(dataLocked_, false)) {
    failure.Run([this] { NSFUnlock(pod_->DataFile()->Stream()); });
  }
  if (std::exchange(indexLocked_, false)) {
    failure.Run([this] { NSFUnlock(pod_->IndexFile()->Stream()); });
  }
  failure.Rethrow();
}

void UpkeepStudy::Close() {
  if (pod_ != nullptr) pod_->Close();
}

void RequireCurrentRevision(vbDatabase& file, UpkeepRole role) {
  const signed char letter = file.GetRevisionLetter();
  if (letter != 'A' && letter != 'a') return;
  LError("You must update the files to the current file revision.\n");
  switch (role) {
    case UpkeepRole::Checked:
      LPrint("       File reads version %c; current version is %c.\n", letter, 'C');
      break;
    case UpkeepRole::Data:
      LPrint("       Data file reads version %c; current version is %c.\n", letter, 'C');
      break;
    case UpkeepRole::Index:
      LPrint("       Index file reads version %c; current version is %c.\n", letter, 'C');
      break;
  }
  if (role == UpkeepRole::Index) {
    LPrint("       Please rebuild the index file.\n");
  } else {
    LPrint("       Please rebuild the data file and then rebuild the index file.\n");
  }
  Throw<CFileNotReady>();
}

void RequireNoDataFile(const std::string& path) {
  // The first block of a data file follows its header, that of an index the headers of the trees.
  struct {
    vbFileHeader file;
    vbFileLockHeader lock;
    vbBlockHeader block;
  } head;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return;
  const bool whole = std::fread(&head, 1, sizeof head, file) == sizeof head;
  std::fclose(file);
  const bool isData = whole && head.file.HasKnownSignature() && head.block.CheckWord == vbCheckWord;
  if (!isData) return;
  LError("%s is no index file but a data file.\n", path.c_str());
  Throw<CWrongFileType>();
}

}  // namespace kestdb
