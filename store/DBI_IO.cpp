#include "store/DBI_IO.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "control/DesignControl.h"
#include "definition/DBCtrl.h"
#include "definition/GPoint.h"
#include "environment/Utilities.h"
#include "index/KSBKey.h"
#include "maintenance/Lock.h"
#include "store/KestErr.h"
#include "store/pod.h"
#include "store/vbdbase.h"

POD* pPOD = nullptr;

namespace {

constexpr int kTreeOrder = 32;
constexpr int kTrees = 25;

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

template <class Singleton>
void MakeIfMissing() {
  Singleton object(pPOD);
  if (!object.FindObject()) object.WriteObject(false);
}

/// Writes the singleton objects that the study lacks.
void MakeSingletons() {
  MakeIfMissing<CDBCtrl>();
  MakeIfMissing<CDesignControl>();
  MakeIfMissing<CGPoint>();
}

}  // namespace

void OpenDatabase(const std::string& name) try {
  CloseDatabase();
  CloseUnlessDone guard;
  isNoBufSet = std::getenv("KEST_NOIOBUF") != nullptr;
  if (!CKUtil::IsASCII(name)) Throw<CNonASCIIDatabase>();
  const std::string base = BaseName(name);
  std::string dataPath = base + ".ksb";
  const std::string indexPath = base + ".kx";
  CheckAccess(dataPath);
  CheckAccess(indexPath);

  KSBKey key;
  pPOD = new POD(dataPath);
  // What the files are must not change until they are open: another process may be making them.
  const CLock lock(pPOD, 0);
  const bool dataExists = vbDatabase::Exists(dataPath);
  const bool indexExists = vbDatabase::Exists(indexPath);
  const int version = GetDBVersion(dataPath);
  // Going on would part a file of another version, or objects without their index, from what is
  // stored next.
  if (dataExists && version > 0 && version != vbDatabase::VBDVersion) Throw<CFileNotReady>();
  if (dataExists && !indexExists) Throw<CNoIndex>();
  pPOD->Open(dataPath, indexPath, key, kTreeOrder, vbReadWrite, 1, 0, kTrees);
  MakeSingletons();
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
