#include <cerrno>
#include <cstdio>
#include <functional>
#include <iterator>
#include <string>
#include <utility>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "environment/Logging.h"
#include "index/vbtree.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "maintenance/upkeep.h"
#include "maintenance/vbdstats.h"
#include "results/ApproxModels.h"
#include "results/DPoint.h"
#include "results/Iter.h"
#include "results/Message.h"
#include "results/RApproxMod.h"
#include "results/RDOE.h"
#include "results/Residual.h"
#include "results/Result.h"
#include "store/KestErr.h"
#include "store/classtable.h"
#include "store/layout.h"
#include "store/pod.h"
#include "store/report.h"
#include "task/DCons.h"
#include "task/DEqn.h"
#include "task/DLink.h"
#include "task/DObj.h"
#include "task/DResp.h"
#include "task/DSet.h"
#include "task/DVar.h"
#include "task/Task.h"

using kestdb::ToInt;

namespace {

// ---- Rebuild and comparison ----

using Rebuild = int (*)(POD*, bool);

/// By class index.
constexpr Rebuild kRebuilds[] = {
    &CInput::RebuildIndex,        &CAuxiliary::RebuildIndex, &CTask::RebuildIndex,
    &CDVar::RebuildIndex,         &CDResp::RebuildIndex,     &CDCons::RebuildIndex,
    &CDObj::RebuildIndex,         &CDLink::RebuildIndex,     &CDEqn::RebuildIndex,
    &CApproxModels::RebuildIndex, &CResult::RebuildIndex,    &CDPoint::RebuildIndex,
    &CIter::RebuildIndex,         &CDSet::RebuildIndex,      &CGPoint::RebuildIndex,
    &CDBCtrl::RebuildIndex,       &CRDOE::RebuildIndex,      &CDesignControl::RebuildIndex,
    &CResp::RebuildIndex,         &CResidual::RebuildIndex,  &CMessage::RebuildIndex,
    &CRApproxMod::RebuildIndex,
};

/// The old index file, put aside while a new one is made.
class Backup {
 public:
  explicit Backup(const std::string& indexPath)
      : indexPath_(indexPath), path_(kestdb::BackupPathOf(indexPath)) {}
  Backup(const Backup&) = delete;
  Backup& operator=(const Backup&) = delete;
  /// Tells the user where the old file is, unless it is no longer needed.
  ~Backup() {
    if (made_) LPrint("The original file was renamed to %s\n", path_.c_str());
  }

  /// THROWS CFileExists, CFileCreation, CWrongFileType, the failures of KStatus.
  void Make();
  void Remove();

 private:
  bool HasOriginal() const;
  void Rename();

  const std::string& indexPath_;
  std::string path_;
  bool made_ = false;
};

bool Backup::HasOriginal() const {
  try {
    KStatus(indexPath_);
    return true;
  } catch (const CNoFileExists& failure) {
    LPrint("Recovering from exception %s in %s (%d)\n", failure.what(), failure.file, failure.line);
    LPrint("Original index file does not exist.\n");
    return false;
  }
}

void Backup::Make() {
  if (!HasOriginal()) return;
  kestdb::RequireNoDataFile(indexPath_);
  if (vbDatabase::Exists(path_) && std::remove(path_.c_str()) != 0) {
    LError("%s already exists and could not be deleted. Backup could not be made.\n",
           path_.c_str());
    Throw<CFileExists>();
  }
  Rename();
  made_ = true;
  LPrint("Renamed original index file (%s) to %s\n", indexPath_.c_str(), path_.c_str());
}

void Backup::Rename() {
  if (std::rename(indexPath_.c_str(), path_.c_str()) == 0) return;
  const int error = errno;
  LError("Could not rename %s to %s\n", indexPath_.c_str(), path_.c_str());
  if (error == EACCES) {
    LPrint("       %s already exists or could not be created.\n", path_.c_str());
    LPrint("       %s might be opened by another process.\n", indexPath_.c_str());
  }
  if (error == EINVAL) LPrint("       Invalid characters used in a file name.\n");
  if (error == ENOENT) LPrint("       %s not found.\n", indexPath_.c_str());
  Throw<CFileCreation>();
}

void Backup::Remove() {
  if (made_) std::remove(path_.c_str());
  made_ = false;
}

void CheckHeaders(POD& pod) {
  PreCheck(pod.DataFile(), false);
  PreCheck(pod.IndexFile(), false);
}

/// One lock for all: nobody may take an index for whole in between.
void GoOverClasses(POD& pod, bool rebuild) {
  const CLock lock(&pod, 0);
  for (std::size_t i = 0; i < std::size(kRebuilds); ++i) {
    const int objects = kRebuilds[i](&pod, rebuild);
    if (rebuild) {
      LPrint("\t%d %s objects indexed\n", objects, pszIndexDesc[i]);
    } else {
      LPrint("%d %s objects are OK\n", objects, pszIndexDesc[i]);
    }
  }
}

void RebuildOrCompare(const std::string& name, bool rebuild, kestdb::UpkeepStudy& study) try {
  const std::string dataPath = kestdb::DataPathOf(name);
  const std::string indexPath = kestdb::IndexPathOf(name);
  KStatus(dataPath);
  Backup backup(indexPath);
  if (rebuild) {
    backup.Make();
  } else {
    KStatus(indexPath);
  }
  study.Open(dataPath, indexPath);
  study.Lock();
  CheckHeaders(study.Pod());
  GoOverClasses(study.Pod(), rebuild);
  study.Unlock();
  study.Close();
  backup.Remove();
}
LOG_AND_RETHROW

// ---- Statistics ----

void PrintTree(unsigned i, const vBtree& tree) {
  if (i < std::size(pszIndexDesc)) {
    LPrint("%s, Tree (%d)\n", pszIndexDesc[i], static_cast<int>(i));
  } else {
    LPrint("unknown, Tree (%d)\n", static_cast<int>(i));
  }
  LPrint("Class ID =          %d\n", ToInt(tree.ClassID));
  LPrint("Root address =      %d\n", ToInt(tree.Root));
  LPrint("Number of entries = %d\n", ToInt(tree.EntryCount));
  LPrint("Number of nodes =   %d\n", ToInt(tree.NodeCount));
  LPrint("Btree order =       %d\n", ToInt(tree.Order));
  LPrint("Btree height =      %d\n", ToInt(tree.Height));
  LPrint("------------------------------\n");
}

void PrintTrees(const std::string& name, kestdb::UpkeepStudy& study) try {
  const std::string dataPath = kestdb::DataPathOf(name);
  const std::string indexPath = kestdb::IndexPathOf(name);
  KStatus(dataPath);
  KStatus(indexPath);
  study.Open(dataPath, indexPath);
  study.Lock();
  const POD& pod = study.Pod();
  for (unsigned i = 0; i < pod.IndexTable()->Count(); ++i) PrintTree(i, *pod.Index(i));
  study.Unlock();
  study.Close();
}
LOG_AND_RETHROW

/// Handles of its own for a run.
class OwnPod {
 public:
  explicit OwnPod(const std::string& name) : dataPath_(kestdb::DataPathOf(name)) {}
  OwnPod(const OwnPod&) = delete;
  OwnPod& operator=(const OwnPod&) = delete;
  ~OwnPod() noexcept(false) { delete pod_; }
  POD& Renew() {
    delete std::exchange(pod_, nullptr);
    pod_ = new POD(dataPath_);
    return *pod_;
  }

 private:
  std::string dataPath_;
  POD* pod_ = nullptr;
};

}  // namespace

void kestdb::RunIndexRebuildCheck(const std::string& name, bool rebuild,
                                  UpkeepStudy::FreshPod freshPod) {
  LPrint(rebuild ? "\n***** Start -- Rebuild Index File *****\n"
                 : "\n***** Start -- Compare Index and Data Files *****\n");
  LPrint("File name: %s\n", name.c_str());
  UpkeepStudy study(std::move(freshPod));
  const EndLine end(rebuild ? "\n***** End -- Rebuild Index File *****\n\n"
                            : "\n***** End -- Compare Index and Data Files *****\n\n");
  RebuildOrCompare(name, rebuild, study);
}

void KIndexRebuildCheck(const std::string& name, bool rebuild) {
  OwnPod pod(name);
  kestdb::RunIndexRebuildCheck(name, rebuild, [&pod]() -> POD& { return pod.Renew(); });
}

void KIndexStats(const std::string& name, bool) {
  LPrint("\n***** Start -- Index File Statistics *****\n");
  LPrint("File name: %s\n", name.c_str());
  OwnPod pod(name);
  kestdb::UpkeepStudy study([&pod]() -> POD& { return pod.Renew(); });
  const kestdb::EndLine end("\n***** End -- Index File Statistics *****\n\n");
  PrintTrees(name, study);
}
