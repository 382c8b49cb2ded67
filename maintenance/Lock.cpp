#include "maintenance/Lock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <utility>

#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "index/vbtree.h"
#include "store/KestErr.h"
#include "store/firstfailure.h"
#include "store/pod.h"
#include "store/vbdbase.h"

bool CLock::locked = false;
std::string CLock::m_strLockNameSta;

namespace {

constexpr unsigned kDefaultWait = 150;
constexpr int kTries = 2000;
constexpr int kRemovals = 50;
constexpr int kForcedTries = 10;

unsigned uTime = 0;    // the longest single wait, in units of mySleep; below 2 until it is read
long lLockThread = 0;  // who holds the lock

/// The longest wait that the init file asks for, half its "LockTimeOut".
unsigned ConfiguredWait() {
  std::string path = COSUtil::GetInitFile();
  if (path.empty()) return kDefaultWait;
  CInitFile file(path, false);
  std::string text;
  if (!file.Get("LockTimeOut", text) || text.empty()) return kDefaultWait;
  const auto wait = static_cast<unsigned>(std::strtol(text.c_str(), nullptr, 10) / 2);
  return wait > 1 ? wait : kDefaultWait;
}

/// The init file is read once in a process.
void ReadTimeOut() {
  if (uTime >= 2) return;
  try {
    uTime = ConfiguredWait();
  } catch (...) {
    uTime = kDefaultWait;
  }
}

/// Waits between half of uTime and the whole of it, so that waiters don't try again in step.
/// `nRand` is the place's last wait, 0 before the first.
void WaitAtRandom(unsigned& nRand) {
  if (nRand == 0) std::srand(static_cast<unsigned>(std::time(nullptr)));
  const float part = static_cast<float>(std::rand()) * 0x1p-31F;
  nRand = static_cast<unsigned>(uTime * (2.0 - static_cast<double>(part)) * 0.5);
  COSUtil::mySleep(nRand);
}

/// Tries until `attempt` succeeds, at most `times` times. After a failure errno is the last try's.
template <class Attempt>
bool Retry(int times, unsigned& nRand, Attempt attempt) {
  int error = 0;
  for (int i = 0; i < times; ++i) {
    if (attempt()) return true;
    error = errno;
    WaitAtRandom(nRand);
  }
  errno = error;
  return false;
}

void PrintAdvice() {
  LPrint("You may have to manually delete the lock directory\n");
  LPrint("in order to unlock the database or increase the \n");
  LPrint("lock time-out in the Kestrelon preferences dialog\n");
}

void MakeDirectory(const std::string& path) {
  static unsigned nRand = 0;
  if (Retry(kTries, nRand, [&] { return mkdir(path.c_str(), 0777) == 0; })) return;
  LError("Error creating lock directory (%s): %s\n", path.c_str(), std::strerror(errno));
  PrintAdvice();
  Throw<CFileLock>();
}

constexpr std::size_t kLongestSuffix = 16;

/// Another name for the directory. Needs no memory when `aside` has room for it.
void NameAside(std::string& aside, const std::string& path) {
  aside.assign(path).append("_").append(std::to_string(std::rand()));
}

/// The rename is what ends the lock, in one step, so that nobody sees it half removed.
void RemoveDirectory(const std::string& path, std::string& aside) {
  static unsigned nRandRename = 0;
  static unsigned nRandRemove = 0;
  const bool renamed = Retry(kTries, nRandRename, [&] {
    NameAside(aside, path);
    return std::rename(path.c_str(), aside.c_str()) == 0;
  });
  if (!renamed) {
    const char* reason = std::strerror(errno);
    LPrint("Lock removal conflict by process (%d)\n", static_cast<int>(getpid()));
    LError("Error removing lock directory (%s): %s\n", path.c_str(), reason);
    PrintAdvice();
    Throw<CFileUnlock>();
  }
  // Another process that came to the same name may have removed the directory already.
  Retry(kRemovals, nRandRemove, [&] { return rmdir(aside.c_str()) == 0 || errno == ENOENT; });
}

bool IsOpen(const vbDatabase* file) {
  return file != nullptr && file->IsOpen();
}

template <class Visit>
void ForEachTree(const POD& pod, Visit visit) {
  for (unsigned i = 0; i < pod.IndexTable()->Count(); ++i) {
    if (vBtree* tree = pod.Index(i); tree != nullptr) visit(*tree);
  }
}

}  // namespace

CLock::CLock(POD* pod, long thread) try {
  if (pod != nullptr) m_strLockNameSta = pod->LockPath();
  ReadTimeOut();
  if (pod == nullptr) Throw<CNullPtr>();
  if (pod->LockHeld() && (thread == 0 || thread == lLockThread)) return;
  // All that takes memory comes before the directory, which must go away also without any.
  std::string path = pod->LockPath();
  m_strAside.reserve(path.size() + kLongestSuffix);
  MakeDirectory(path);
  Path = std::move(path);
  Hold(pod, thread);
}
LOG_AND_RETHROW

CLock::~CLock() noexcept(false) {
  const bool unwinding = std::uncaught_exceptions() > 0;
  try {
    UnLock();
  } catch (...) {
    if (!unwinding) throw;
  }
}

/// Makes the lock, whose directory stands, this object's.
void CLock::Hold(POD* pod, long thread) {
  Pod = pod;
  pod->m_bLockHeld = true;
  lLockThread = thread;
  try {
    LoadHeaders();
  } catch (...) {
    // No destructor runs for a lock that was never made. That the directory could not be removed
    // is in the log; the first failure goes on.
    kestdb::FirstFailure ignored;
    ignored.Run([this] { RemoveDirectory(Path, m_strAside); });
    LetGo();
    throw;
  }
  locked = true;
}

void CLock::LetGo() {
  Pod->m_bLockHeld = false;
  Pod = nullptr;
  lLockThread = 0;
  Path.clear();
  locked = false;
}

void CLock::LoadHeaders() const {
  if (vbDatabase* data = Pod->DataFile(); IsOpen(data)) {
    data->Refresh();
    data->ReadFileHdr();
  }
  if (vbDatabase* index = Pod->IndexFile(); IsOpen(index)) {
    index->Refresh();
    index->ReadFront();
    ForEachTree(*Pod, [](vBtree& tree) { tree.LoadBtreeHeader(); });
  }
}

void CLock::StoreHeaders() const {
  kestdb::FirstFailure failure;
  vbDatabase* data = Pod->DataFile();
  vbDatabase* index = Pod->IndexFile();
  if (IsOpen(data)) failure.Run([&] { data->WriteFileHdr(); });
  if (IsOpen(index)) {
    failure.Run([&] {
      index->WriteFileHdr();
      ForEachTree(*Pod, [](vBtree& tree) {
        if (tree.HeaderDiffers()) tree.WriteBtreeHeader();
      });
    });
  }
  if (IsOpen(data)) failure.Run([&] { data->Sync(); });
  if (IsOpen(index)) failure.Run([&] { index->Sync(); });
  failure.Rethrow();
}

void CLock::UnLock() try {
  if (Pod == nullptr) return;
  kestdb::FirstFailure failure;
  failure.Run([this] { StoreHeaders(); });
  RemoveDirectory(Path, m_strAside);
  LetGo();
  failure.Rethrow();
}
LOG_AND_RETHROW

void CLock::HandOver(POD& to) {
  if (Pod == nullptr) return;
  Pod->m_bLockHeld = false;
  to.m_bLockHeld = true;
  Pod = &to;
}

void CLock::ForceUnlock() {
  std::string aside;
  NameAside(aside, m_strLockNameSta);
  if (locked) return;
  for (int i = 0; i < kForcedTries; ++i) {
    if (std::rename(m_strLockNameSta.c_str(), aside.c_str()) == 0) {
      rmdir(aside.c_str());
      return;
    }
    COSUtil::mySleep(1);
  }
}

namespace {

/// Applies an fcntl lock of `type` to the whole file; false when it is refused.
bool ApplyFileLock(std::FILE* file, short type) {
  if (file == nullptr) Throw<CNullPtr>();
  if (std::fseek(file, 0, SEEK_SET) != 0) Throw<CFileSeek>();
  struct flock lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  return fcntl(fileno(file), F_SETLK, &lock) != -1;
}

}  // namespace

bool NSFLock(std::FILE* file) try {
  if (!ApplyFileLock(file, F_WRLCK)) Throw<CFileLock>();
  return true;
}
LOG_AND_RETHROW

bool NSFUnlock(std::FILE* file) try {
  if (!ApplyFileLock(file, F_UNLCK)) Throw<CLockViolation>();
  return true;
}
LOG_AND_RETHROW
