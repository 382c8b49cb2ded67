#include "tests/fault/processes/Environment.h"

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <system_error>
#include <thread>

#include "environment/Logging.h"
#include "environment/Utilities.h"
#include "maintenance/Lock.h"
#include "tests/fault/processes/Crew.h"

namespace {

std::chrono::microseconds unit{1000};
double slept = 0.0;
unsigned firstSleep = 0;
int releaseSleeps = 0;
int faults = 0;

}  // namespace

void COSUtil::mySleep(unsigned units) {
  if (firstSleep == 0) firstSleep = units;
  const double start = Now();
  std::this_thread::sleep_for(units * unit);
  if (CLock::locked) {
    ++releaseSleeps;
  } else {
    slept += Now() - start;
  }
}

void LError(const char* format, ...) {
  ++faults;
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fKLog, format, arguments);
  va_end(arguments);
}

void LWarn(const char* format, ...) {
  ++faults;
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(fKLog, format, arguments);
  va_end(arguments);
}

void SetUpEnvironment(const std::string& folder, int process, int timeOut,
                      int microsecondsInAUnit) {
  const std::string own = std::to_string(process);
  fKLog = std::fopen((folder + "/log" + own).c_str(), "a");
  if (fKLog == nullptr) throw std::system_error(errno, std::generic_category(), "no log");
  const std::string init = timeOut == 0 ? "" : folder + "/init" + own;
  if (timeOut != 0) std::ofstream(init) << "LockTimeOut = " << timeOut << '\n';
  setenv("KEST_INIT_FILE", init.c_str(), 1);
  unit = std::chrono::microseconds(microsecondsInAUnit);
}

double SleptForLock() {
  return slept;
}

unsigned FirstSleep() {
  return firstSleep;
}

int ReleaseSleeps() {
  return releaseSleeps;
}

int LoggedFaults() {
  return faults;
}
