// The C library's streams make their system calls without the dynamic linker's help, so that
// functions of other names in front of them would miss them. A filter of the kernel traps the calls
// instead, wherever they come from.

#include "tests/fault/reliability/shim.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifndef __x86_64__
#error "the registers of this machine are not known here"
#endif

namespace {

/// As the sixth argument, which none of the calls has, it lets a call pass.
constexpr unsigned kPass = 0x6b657374;

enum class Kind { None, Kill, Torn, Error, Short, End };
enum class Domain { All, Data, Writes, Reads };

struct Fault {
  Kind kind = Kind::None;
  Domain domain = Domain::All;
  int error = 0;
  bool forEver = false;
  long at = 0;
};

struct Named {
  const char* name;
  Fault fault;
};

constexpr std::array<Named, 11> kFaults{{
    {"kill", {Kind::Kill, Domain::All, 0, false}},
    {"torn", {Kind::Torn, Domain::Writes, 0, false}},
    {"eio", {Kind::Error, Domain::All, EIO, false}},
    {"eio-ever", {Kind::Error, Domain::Data, EIO, true}},
    {"enospc", {Kind::Error, Domain::Writes, ENOSPC, false}},
    {"enospc-ever", {Kind::Error, Domain::Writes, ENOSPC, true}},
    {"short", {Kind::Short, Domain::Writes, 0, false}},
    {"short-ever", {Kind::Short, Domain::Writes, 0, true}},
    {"short-read", {Kind::Short, Domain::Reads, 0, false}},
    {"short-read-ever", {Kind::Short, Domain::Reads, 0, true}},
    {"eof", {Kind::End, Domain::Reads, 0, false}},
}};

enum class Target { Descriptor, Path, PathInFolder };

struct Trapped {
  long number;
  Target target;
  bool reads;
  bool writes;
};

constexpr std::array<Trapped, 20> kTrapped{{
    {SYS_read, Target::Descriptor, true, false},
    {SYS_pread64, Target::Descriptor, true, false},
    {SYS_readv, Target::Descriptor, true, false},
    {SYS_preadv, Target::Descriptor, true, false},
    {SYS_write, Target::Descriptor, false, true},
    {SYS_pwrite64, Target::Descriptor, false, true},
    {SYS_writev, Target::Descriptor, false, true},
    {SYS_pwritev, Target::Descriptor, false, true},
    {SYS_lseek, Target::Descriptor, false, false},
    {SYS_fsync, Target::Descriptor, false, false},
    {SYS_fdatasync, Target::Descriptor, false, false},
    {SYS_rename, Target::Path, false, false},
    {SYS_mkdir, Target::Path, false, false},
    {SYS_rmdir, Target::Path, false, false},
    {SYS_unlink, Target::Path, false, false},
    {SYS_openat, Target::PathInFolder, false, false},
    {SYS_renameat, Target::PathInFolder, false, false},
    {SYS_renameat2, Target::PathInFolder, false, false},
    {SYS_mkdirat, Target::PathInFolder, false, false},
    {SYS_unlinkat, Target::PathInFolder, false, false},
}};

/// Not null for a number that the filter traps.
const Trapped* Find(long number) {
  const auto isIt = [number](const Trapped& one) { return one.number == number; };
  return std::find_if(kTrapped.begin(), kTrapped.end(), isIt);
}

bool active = false;
Fault fault;
std::array<long, 4> counts{};  // by domain
const char* studyFolder = nullptr;
dev_t studyDevice = 0;

struct Call {
  long number = 0;
  std::array<long, 5> arguments{};
};

/// The result as the kernel gives it: a negative error number for a failure.
long Pass(const Call& call) {
  const auto& of = call.arguments;
  long result = 0;
  register long r10 asm("r10") = of[3];
  register long r8 asm("r8") = of[4];
  register long r9 asm("r9") = kPass;
  asm volatile("syscall"
               : "=a"(result)
               : "a"(call.number), "D"(of[0]), "S"(of[1]), "d"(of[2]), "r"(r10), "r"(r8), "r"(r9)
               : "rcx", "r11", "memory");
  return result;
}

// ---- Which calls count ----

/// Pipes, terminals and what lies on other devices are none of the study's; sanitizers use a pipe
/// to look at memory.
bool IsStudyFile(long descriptor) {
  struct stat status = {};
  const Call look{SYS_fstat, {descriptor, reinterpret_cast<long>(&status)}};
  return descriptor > STDERR_FILENO && Pass(look) == 0 && S_ISREG(status.st_mode) &&
         status.st_dev == studyDevice;
}

bool IsStudyPath(long path) {
  return std::strncmp(reinterpret_cast<const char*>(path), studyFolder, std::strlen(studyFolder)) ==
         0;
}

bool IsConcerned(const Call& call, const Trapped& of) {
  if (!active) return false;
  if (of.target == Target::Descriptor) return IsStudyFile(call.arguments[0]);
  return IsStudyPath(call.arguments[of.target == Target::Path ? 0 : 1]);
}

/// Whether this call is to be disturbed.
bool Count(const Trapped& of) {
  const std::array<bool, 4> within{true, of.target == Target::Descriptor, of.writes, of.reads};
  for (std::size_t i = 0; i < counts.size(); ++i) counts[i] += within[i] ? 1 : 0;
  const auto domain = static_cast<std::size_t>(fault.domain);
  if (fault.kind == Kind::None || !within[domain]) return false;
  return fault.forEver ? counts[domain] >= fault.at : counts[domain] == fault.at;
}

// ---- Disturbing ----

/// Of several pieces the first that holds bytes, as a call of its own: the rest is not moved.
Call FirstPiece(const Call& call, long single) {
  const auto* pieces = reinterpret_cast<const iovec*>(call.arguments[1]);
  const auto* end = pieces + call.arguments[2];
  const auto* first = std::find_if(pieces, end, [](const iovec& one) { return one.iov_len > 0; });
  if (first == end) return call;
  return {single,
          {call.arguments[0], reinterpret_cast<long>(first->iov_base),
           static_cast<long>(first->iov_len), call.arguments[3]}};
}

Call Single(const Call& call) {
  switch (call.number) {
    case SYS_readv:
      return FirstPiece(call, SYS_read);
    case SYS_preadv:
      return FirstPiece(call, SYS_pread64);
    case SYS_writev:
      return FirstPiece(call, SYS_write);
    case SYS_pwritev:
      return FirstPiece(call, SYS_pwrite64);
    default:
      return call;
  }
}

long MoveHalf(const Call& call) {
  Call half = Single(call);
  half.arguments[2] = std::max(half.arguments[2] / 2, 1L);
  return Pass(half);
}

void Die() {
  Pass({SYS_kill, {getpid(), SIGKILL}});
}

long Disturb(const Call& call) {
  if (fault.kind == Kind::Error) return -fault.error;
  if (fault.kind == Kind::Short) return MoveHalf(call);
  if (fault.kind == Kind::End) return 0;
  if (fault.kind == Kind::Torn) MoveHalf(call);
  Die();
  return 0;
}

/// A process that dies loses nothing of what it handed to the kernel, so that the disk need not be
/// waited for.
long Answer(const Call& call) {
  const Trapped* of = Find(call.number);
  if (of == kTrapped.end() || !IsConcerned(call, *of)) return Pass(call);
  if (Count(*of)) return Disturb(call);
  const bool isSync = call.number == SYS_fsync || call.number == SYS_fdatasync;
  return isSync ? 0 : Pass(call);
}

void OnCall(int, siginfo_t* info, void* context) {
  auto& of = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  of[REG_RAX] =
      Answer({info->si_syscall, {of[REG_RDI], of[REG_RSI], of[REG_RDX], of[REG_R10], of[REG_R8]}});
}

// ---- Beginning ----

void ReadFault() {
  const char* text = std::getenv("KESTDB_FAULT");
  if (text == nullptr) return;
  const char* colon = std::strchr(text, ':');
  if (colon == nullptr) std::abort();
  const auto length = static_cast<std::size_t>(colon - text);
  for (const Named& named : kFaults) {
    if (std::strlen(named.name) == length && std::strncmp(named.name, text, length) == 0) {
      fault = named.fault;
    }
  }
  fault.at = std::strtol(colon + 1, nullptr, 10);
  if (fault.kind == Kind::None || fault.at < 1) std::abort();
}

/// Lets all calls pass but those of kTrapped without the mark.
auto MakeFilter() {
  constexpr auto ret = static_cast<unsigned short>(BPF_RET | BPF_K);
  constexpr auto load = static_cast<unsigned short>(BPF_LD | BPF_W | BPF_ABS);
  constexpr auto equal = static_cast<unsigned short>(BPF_JMP | BPF_JEQ | BPF_K);
  constexpr std::size_t head = 3;
  constexpr std::size_t allow = head + kTrapped.size();
  const auto jump = [](std::size_t from, std::size_t to) {
    return static_cast<unsigned char>(to - from - 1);
  };
  std::array<sock_filter, allow + 2> filter{};
  filter[0] = {load, 0, 0, offsetof(seccomp_data, args) + 5 * sizeof(__u64)};
  filter[1] = {equal, jump(1, allow), 0, kPass};
  filter[2] = {load, 0, 0, offsetof(seccomp_data, nr)};
  for (std::size_t i = 0; i < kTrapped.size(); ++i) {
    const auto number = static_cast<unsigned>(kTrapped[i].number);
    filter[head + i] = {equal, jump(head + i, allow + 1), 0, number};
  }
  filter[allow] = {ret, 0, 0, SECCOMP_RET_ALLOW};
  filter[allow + 1] = {ret, 0, 0, SECCOMP_RET_TRAP};
  return filter;
}

void TrapCalls() {
  struct sigaction action = {};
  action.sa_sigaction = OnCall;
  action.sa_flags = SA_SIGINFO;
  auto filter = MakeFilter();
  const sock_fprog program{filter.size(), filter.data()};
  if (sigaction(SIGSYS, &action, nullptr) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    std::perror("no calls can be trapped");
    std::abort();
  }
}

}  // namespace

extern "C" void FaultsBegin(const char* folder) {
  struct stat status = {};
  if (stat(folder, &status) != 0) std::abort();
  studyFolder = folder;
  studyDevice = status.st_dev;
  ReadFault();
  TrapCalls();
  active = true;
}

extern "C" void FaultsPause() {
  active = false;
}

extern "C" void FaultsGoOn() {
  active = true;
}

extern "C" void FaultsEnd(CallCounts* result) {
  active = false;
  *result = {counts[0], counts[1], counts[2], counts[3]};
}
