#include "store/DBI_IO.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "control/DesignControl.h"
#include "definition/Auxiliary.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "definition/Input.h"
#include "definition/Resp.h"
#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "index/KSBKey.h"
#include "maintenance/DBUtilities.h"
#include "maintenance/Lock.h"
#include "maintenance/upgrade.h"
#include "maintenance/upkeep.h"
#include "store/KestErr.h"
#include "store/indexrebuild.h"
#include "store/layout.h"
#include "store/pod.h"
#include "store/vbdbase.h"
#include "store/walk.h"

POD* pPOD = nullptr;

namespace {

/// Only these two forms count: a mixed-case extension is part of the name.
std::string BaseName(const std::string& name) {
  const bool extended = name.ends_with(".ksb") || name.ends_with(".KSB");
  return extended ? name.substr(0, name.size() - 4) : name;
}

/// Looks at the permissions that a file gives to its owner, if there is such a file.
void CheckAccess(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return;
  if ((status.st_mode & S_IRUSR) == 0) Throw<CReadOnlyFile>();
  if ((status.st_mode & S_IWUSR) == 0) Throw<CFileNotWriteable>();
}

/// Leaves no study open behind a failed open, whatever state it is in.
class CloseUnlessDone {
 public:
  CloseUnlessDone() = default;
  CloseUnlessDone(const CloseUnlessDone&) = delete;
  CloseUnlessDone& operator=(const CloseUnlessDone&) = delete;
  ~CloseUnlessDone() {
    if (done_) return;
    try {
      CloseDatabase();
    } catch (...) {
      pPOD->Abandon();
      delete std::exchange(pPOD, nullptr);
    }
  }
  void Done() { done_ = true; }

 private:
  bool done_ = false;
};

// ---- Old and damaged files ----

/// The files of the study that is being opened, as they are found.
struct Files {
  std::string base;
  std::string dataPath;
  std::string indexPath;
  bool dataExists = false;
  bool indexExists = false;
  int version = -1;
};

/// A mark beside the index file for as long as that is wrong or only begun. It stays behind when
/// the process dies, and tells the next open to make the index anew.
class IndexMark {
 public:
  explicit IndexMark(const std::string& indexPath) : path_(kestdb::MarkPathOf(indexPath)) {}
  IndexMark(const IndexMark&) = delete;
  IndexMark& operator=(const IndexMark&) = delete;
  ~IndexMark() {
    if (!kept_) std::remove(path_.c_str());
  }

  bool IsSet() const { return vbDatabase::Exists(path_); }
  void Set() const {
    std::FILE* file = std::fopen(path_.c_str(), "wb");
    if (file == nullptr || std::fclose(file) != 0) Throw<CFileCreation>();
  }
  /// Leaves the mark behind.
  void Keep() { kept_ = true; }

 private:
  std::string path_;
  bool kept_ = false;
};

/// A rebuild that was killed just before its end leaves the whole study in its copy. A new, empty
/// study must not take that place. The index doesn't fit the copy.
void RequireNoLostData(const Files& files, IndexMark& mark) {
  const std::string copyPath = kestdb::CopyPathOf(files.dataPath);
  if (files.dataExists || !vbDatabase::Exists(copyPath)) return;
  LError("%s does not exist, but %s does.\n", files.dataPath.c_str(), copyPath.c_str());
  LPrint("     It may be the whole study, from a rebuild that was interrupted.\n");
  LPrint("     Rename it to %s, or delete it.\n", files.dataPath.c_str());
  mark.Set();
  mark.Keep();
  Throw<CNoFileExists>();
}

/// Removes an index that is void.
void DropIndex(Files& files, IndexMark& mark) {
  if (files.indexExists) kestdb::RequireNoDataFile(files.indexPath);
  if (files.indexExists && std::remove(files.indexPath.c_str()) != 0) {
    mark.Keep();
    Throw<CFileRemove>();
  }
  files.indexExists = false;
}

/// An index that a process left unfinished, here or in a rebuild, is none.
void DropUnfinishedIndex(Files& files, IndexMark& mark) {
  const bool unfinished = mark.IsSet() || vbDatabase::Exists(kestdb::BackupPathOf(files.indexPath));
  if (files.dataExists && unfinished) DropIndex(files, mark);
}

/// Brings a data file of another version up to date. Its objects move, so that its index is void.
void Upgrade(Files& files, IndexMark& mark) {
  if (!files.dataExists || files.version <= 0 || files.version == vbDatabase::VBDVersion) return;
  mark.Set();
  KFileRebuild(files.dataPath);
  DropIndex(files, mark);
}

void OpenFiles(const Files& files) {
  KSBKey key;
  pPOD->Open(files.dataPath, files.indexPath, key, kestdb::kTreeOrder, vbReadWrite, 1, 0,
             kestdb::kTrees);
}

/// A data file without any bytes behind its header needs none but the new, empty one.
bool NeedsIndex(const POD& pod) {
  const vbDatabase& data = *pod.DataFile();
  if (data.Length() <= data.GetHeapStart()) return false;
  for (unsigned i = 0; i < pod.IndexTable()->Count(); ++i) {
    if (pod.IndexTable()->Record(i)->RebuildFlag == 1) return true;
  }
  return false;
}

/// Puts a new handle in the place of pPOD, under the same lock.
POD& RenewPOD(CLock& lock, const Files& files) {
  auto fresh = std::make_unique<POD>(files.dataPath);
  pPOD->Close();
  lock.HandOver(*fresh);
  delete std::exchange(pPOD, fresh.release());
  return *pPOD;
}

/// An index file that is begun for a study without one, or for a new study. When that fails, it
/// must not be taken for a whole one by the next who opens the study.
class BegunIndex {
 public:
  BegunIndex(const Files& files, IndexMark& mark)
      : path_(files.indexPath), mark_(mark), done_(files.dataExists && files.indexExists) {
    if (files.dataExists && !done_) mark_.Set();
  }
  BegunIndex(const BegunIndex&) = delete;
  BegunIndex& operator=(const BegunIndex&) = delete;
  ~BegunIndex() {
    // A link that leads nowhere is left to its owner.
    if (done_ || !vbDatabase::Exists(path_)) return;
    if (std::remove(path_.c_str()) != 0) mark_.Keep();
  }
  void Done() { done_ = true; }

 private:
  const std::string& path_;
  IndexMark& mark_;
  bool done_;
};

/// Makes the index that the study lacks. The lock is kept: to others, an empty index is one.
void MakeIndex(CLock& lock, const Files& files) {
  LPrint("No index file found or the index needs rebuilding.\n");
  LPrint("Will attempt to create a new index file (%s) from the specified data file (%s).\n",
         files.indexPath.c_str(), files.dataPath.c_str());
  const auto freshPod = [&]() -> POD& { return RenewPOD(lock, files); };
  kestdb::RunIndexRebuildCheck(files.base, true, freshPod);
  RenewPOD(lock, files);
  OpenFiles(files);
}

/// Older versions could keep line breaks in the texts of equations.
void CleanEquations(int version) {
  if (version >= 1 && version < vbDatabase::VBDVersion) kestdb::CleanEquationTexts(pPOD);
}

// ---- What every study holds ----

/// Stores an object anew that lies behind the end that the file header tells, where others would
/// write over it: so a disk that stays full may leave it.
void BringBeforeTheEnd(vbPersistent& object) {
  if (object.ObjectAddress() < pPOD->DataFile()->GetEOF()) return;
  try {
    object.ReadObject(-1);
  } catch (const CKestErr&) {
    return;  // it is in the log, and its readers will be told
  }
  object.PutObject();
}

/// Whether the study holds the object. A disk that stays full may leave its key alone.
bool IsStored(vbPersistent& object) {
  if (!object.FindObject() || pPOD->DataFile()->IsFreed(object.ObjectAddress())) return false;
  BringBeforeTheEnd(object);
  return true;
}

/// Puts an object into the index that the index has lost. A second one beside it would keep every
/// rebuild from its end. False where the data file has none that can be read.
bool IsAdopted(vbPersistent& object) {
  if (object.FindObject()) return false;
  bool adopted = false;
  kestdb::ForEachLiveObject(*pPOD->DataFile(), object.GetVBClassID(), [&](long address) {
    if (adopted) return;
    try {
      object.ReadObject(address);
    } catch (const CKestErr&) {
      return;  // it is in the log, and a rebuild will leave it out
    }
    adopted = object.Add(address, object.GetVBClassID());
  });
  if (adopted) BringBeforeTheEnd(object);
  return adopted;
}

template <class Singleton>
void MakeIfMissing() {
  Singleton object(pPOD);
  if (IsStored(object) || IsAdopted(object)) return;
  Singleton(pPOD).PutObject();
}

/// The first ID behind those of all definitions of a kind.
template <class Definition>
long FreeID() {
  const std::vector<int> ids = kestdb::AllIDs<Definition>(pPOD);
  return ids.empty() ? 1 : *std::max_element(ids.begin(), ids.end()) + 1L;
}

/// A study that lost its counters, by damage or by a process that died as it stored them, must not
/// hand out IDs in use.
void MakeCountersIfMissing() {
  CDBCtrl counters(pPOD);
  if (IsStored(counters) || IsAdopted(counters)) return;
  counters.NextInputID = FreeID<CInput>();
  counters.NextRespID = FreeID<CResp>();
  counters.NextAuxID = FreeID<CAuxiliary>();
  counters.PutObject();
}

/// Writes the singleton objects that the study lacks.
void MakeSingletons() {
  MakeCountersIfMissing();
  MakeIfMissing<CDesignControl>();
  MakeIfMissing<CGPoint>();
}

}  // namespace

void OpenDatabase(const std::string& name) try {
  CloseDatabase();
  CloseUnlessDone guard;
  isNoBufSet = std::getenv("KEST_NOIOBUF") != nullptr;
  if (!CKUtil::IsASCII(name)) Throw<CNonASCIIDatabase>();
  Files files;
  files.base = BaseName(name);
  files.dataPath = kestdb::DataPathOf(files.base);
  files.indexPath = kestdb::IndexPathOf(files.base);
  CheckAccess(files.dataPath);
  CheckAccess(files.indexPath);

  pPOD = new POD(files.dataPath);
  // What the files are must not change until they are open: another process may be making them.
  CLock lock(pPOD, 0);
  files.dataExists = vbDatabase::Exists(files.dataPath);
  files.indexExists = vbDatabase::Exists(files.indexPath);
  IndexMark mark(files.indexPath);
  RequireNoLostData(files, mark);
  files.version = GetDBVersion(files.dataPath);
  DropUnfinishedIndex(files, mark);
  Upgrade(files, mark);
  BegunIndex index(files, mark);
  OpenFiles(files);
  if (NeedsIndex(*pPOD)) MakeIndex(lock, files);
  index.Done();
  if (COSUtil::IsWin9x()) {
    RenewPOD(lock, files);
    OpenFiles(files);
  }
  MakeSingletons();
  CleanEquations(files.version);
  lock.UnLock();  // here, where a failure still closes the study
  guard.Done();
}
LOG_AND_RETHROW

void CloseDatabase() try {
  if (pPOD == nullptr) return;
  pPOD->Close();
  delete std::exchange(pPOD, nullptr);
}
LOG_AND_RETHROW

bool IsOpen() {
  return pPOD != nullptr;
}

POD* GetPOD() {
  return pPOD;
}

int GetDBVersion(std::string& path) try {
  if (!vbdFPTRExists(path)) return -1;
  const CLock lock(pPOD, 0);
  std::FILE* file = std::fopen(path.c_str(), "r+b");
  if (file == nullptr) Throw<CFileOpen>();
  vbFileHeader header;
  const bool whole = std::fread(&header, 1, sizeof header, file) == sizeof header;
  const bool closed = std::fclose(file) == 0;
  if (!whole) Throw<CFileRead>();
  if (!closed) Throw<CFileClose>();
  return static_cast<int>(long{header.Version});
}
LOG_AND_RETHROW

void GetKSBVersion(int* major, int* minor, int* patch) {
  if (major != nullptr) *major = 6;
  if (minor != nullptr) *minor = 21;
  if (patch != nullptr) *patch = 0;
}
