#include "tests/fault/reliability/Run.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <utility>

#include "tests/fault/reliability/Attempt.h"
#include "tests/fault/reliability/Memory.h"
#include "tests/fault/reliability/shim.h"

namespace fs = std::filesystem;

extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

namespace {

// ---- Disturbing ----

/// Shortages of memory are this program's own business, all other faults the shim's.
std::pair<memory::Shortage, long> ShortageWanted() {
  const char* text = std::getenv("KESTDB_FAULT");
  const char* colon = text != nullptr ? std::strchr(text, ':') : nullptr;
  if (colon == nullptr || std::strncmp(text, "memory", 6) != 0) return {};
  const bool forEver = std::strncmp(text, "memory-ever:", 12) == 0;
  return {forEver ? memory::Shortage::Ever : memory::Shortage::Once,
          std::strtol(colon + 1, nullptr, 10)};
}

struct Counts {
  CallCounts calls;
  long allocations = 0;
};

void Begin(const std::string& folder) {
  const auto [shortage, at] = ShortageWanted();
  if (FaultsBegin != nullptr) FaultsBegin(folder.c_str());
  memory::Begin(shortage, at);
}

Counts End() {
  Counts counts;
  counts.allocations = memory::End();
  if (FaultsEnd != nullptr) FaultsEnd(&counts.calls);
  return counts;
}

/// Nothing is disturbed while one lives.
class Pause {
 public:
  Pause() {
    memory::Pause();
    if (FaultsPause != nullptr) FaultsPause();
  }
  Pause(const Pause&) = delete;
  Pause& operator=(const Pause&) = delete;
  ~Pause() {
    if (FaultsGoOn != nullptr) FaultsGoOn();
    memory::GoOn();
  }
};

// ---- What stays ----

/// How many descriptors of this process lead into the folder, also to files that are gone.
long OpenFilesIn(const std::string& folder) {
  long count = 0;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code closed;  // the iterator's own is listed too
    if (fs::read_symlink(entry.path(), closed).string().starts_with(folder + '/')) ++count;
  }
  return count;
}

/// Also what is left of a lock that was being taken away.
bool LockIsLeft(const std::string& base) {
  const std::string lock = fs::path(base + ".lck").filename();
  for (const auto& entry : fs::directory_iterator(fs::path(base).parent_path())) {
    if (entry.path().filename().string().starts_with(lock)) return true;
  }
  return false;
}

/// The worse of `ending` and of what is left of the work, where a study that is open has two files.
int WithRests(int ending, const std::string& base) {
  const long allowed = IsOpen() ? 2 : 0;
  if (LockIsLeft(base)) {
    std::cerr << "the lock is left\n";
    return std::max<int>(ending, kLockLeft);
  }
  const long files = OpenFilesIn(fs::path(base).parent_path());
  if (files <= allowed) return ending;
  std::cerr << files << " files are left open\n";
  return std::max<int>(ending, kDescriptorLeft);
}

int Disturbed(const Unit& unit, const std::string& base, const std::string& folder,
              Counts& counts) {
  if (unit.needsOpen) OpenDatabase(base);
  Begin(folder);
  int ending = Try(kDone, [&] { unit.work(base); });
  {
    const Pause pause;
    ending = WithRests(ending, base);
  }
  ending = Close(ending);
  counts = End();
  return WithRests(ending, base);
}

// ---- Telling ----

void WriteCounts(const Counts& counts, long stayed) {
  const char* path = std::getenv("KESTDB_FAULT_COUNTS");
  if (path == nullptr) return;
  std::ofstream file(path);
  const CallCounts& calls = counts.calls;
  file << calls.all << ' ' << calls.data << ' ' << calls.writes << ' ' << calls.reads << ' '
       << counts.allocations << ' ' << stayed << '\n';
  file.close();
  if (!file) throw std::runtime_error("the counts can't be written");
}

bool IsTooMuch(long stayed) {
  const char* most = std::getenv("KESTDB_FAULT_ALIVE");
  return most != nullptr && stayed > std::strtol(most, nullptr, 10);
}

bool HasLeaks() {
  return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

}  // namespace

int RunUnit(const Unit& unit, const std::string& base) {
  const std::string folder = fs::path(base).parent_path();
  Counts counts;
  const long before = memory::Alive();
  const int ending = Disturbed(unit, base, folder, counts);
  const long stayed = memory::Alive() - before;
  WriteCounts(counts, stayed);
  if (!IsTooMuch(stayed) && !HasLeaks()) return ending;
  std::cerr << stayed << " allocations stay\n";
  return std::max<int>(ending, kMemoryLeft);
}
