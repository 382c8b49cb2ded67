#include "LockWait.h"

#include <kestdb.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

#include "Ending.h"
#include "Interrupts.h"

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr Seconds kShortestLibraryWait{1.0};
constexpr std::chrono::milliseconds kPause{50};

Seconds longestWait{0.0};

bool Stands(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

void TellOfWait(const std::string& lockPath) {
  std::fprintf(stderr, "kestdb: waiting for the lock %s, %s\n", lockPath.c_str(),
               LockedSince(lockPath).c_str());
}

[[noreturn]] void GiveUp(const std::string& lockPath) {
  if (!Stands(lockPath)) {
    throw Refusal(kNotOpened, "the lock directory " + lockPath + " can't be made");
  }
  throw Refusal(kLocked, "the study is " + LockedSince(lockPath) + " (" + lockPath +
                             "); --wait SECONDS waits for it, `kestdb unlock --directory` takes "
                             "away the lock of a process that died");
}

/// One wait of the library for the lock, which consists of many short sleeps.
class LibraryWait {
 public:
  /// THROWS Refusal, Interrupted.
  void Go() {
    const auto now = Clock::now();
    if (now - last_ > kShortestLibraryWait) Begin(now);
    last_ = now;
    StopIfInterrupted();
    if (now - start_ >= std::max(longestWait, kShortestLibraryWait)) {
      GiveUp(CLock::m_strLockNameSta);
    }
    if (!told_ && now - start_ >= kShortestLibraryWait / 2) {
      TellOfWait(CLock::m_strLockNameSta);
      told_ = true;
    }
  }

 private:
  void Begin(Clock::time_point now) {
    start_ = now;
    told_ = false;
  }

  Clock::time_point start_;
  Clock::time_point last_;
  bool told_ = false;
};

}  // namespace

/// The library sleeps here, and only for a lock. Where it holds the lock, it wants to release it,
/// and must not be stopped.
void COSUtil::mySleep(unsigned milliseconds) {
  static LibraryWait wait;
  if (!CLock::locked) wait.Go();
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void SetLockWait(double seconds) {
  longestWait = Seconds(seconds);
}

void AwaitLock(const std::string& lockPath) {
  if (!Stands(lockPath)) return;
  const auto end = Clock::now() + longestWait;
  if (longestWait > Seconds(0.0)) TellOfWait(lockPath);
  while (Stands(lockPath)) {
    StopIfInterrupted();
    if (Clock::now() >= end) GiveUp(lockPath);
    std::this_thread::sleep_for(kPause);
  }
}

std::string LockedSince(const std::string& lockPath) {
  struct stat status;
  if (stat(lockPath.c_str(), &status) != 0) return "locked";
  const std::time_t made = status.st_mtime;
  std::tm local = {};
  localtime_r(&made, &local);
  char text[64];
  std::strftime(text, sizeof text, "locked since %Y-%m-%d %H:%M:%S", &local);
  return text;
}
