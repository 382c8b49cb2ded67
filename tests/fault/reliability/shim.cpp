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

enum class Kind { None, Kill, Torn, Error, Short };
enum class Domain { All, Data, Writes };

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

constexpr std::array<Named, 8> kFaults{{
    {"kill", {Kind::Kill, Domain::All, 0, false}},
    {"torn", {Kind::Torn, Domain::Writes, 0, false}},
    {"eio", {Kind::Error, Domain::All, EIO, false}},
    {"eio-ever", {Kind::Error, Domain::Data, EIO, true}},
    {"enospc", {Kind::Error, Domain::Writes, ENOSPC, false}},
    {"enospc-ever", {Kind::Error, Domain::Writes, ENOSPC, true}},
    {"short", {Kind::Short, Domain::Writes, 0, false}},
    {"short-ever", {Kind::Short, Domain::Writes, 0, true}},
}};

bool active = false;
Fault fault;
std::array<long, 3> counts{};  // by domain

struct Call {
  long number;
  long a;
  long b;
  long c;
};

/// The result as the kernel gives it: a negative error number for a failure.
long Pass(const Call& call) {
  long result = 0;
  register long r10 asm("r10") = 0;
  register long r8 asm("r8") = 0;
  register long r9 asm("r9") = kPass;
  asm volatile("syscall"
               : "=a"(result)
               : "a"(call.number), "D"(call.a), "S"(call.b), "d"(call.c), "r"(r10), "r"(r8), "r"(r9)
               : "rcx", "r11", "memory");
  return result;
}

bool IsWrite(long number) {
  return number == SYS_write;
}

bool MovesData(long number) {
  return IsWrite(number) || number == SYS_read || number == SYS_lseek || number == SYS_fsync;
}

/// Pipes and terminals are none of the study's; sanitizers use a pipe to look at memory.
bool IsFile(long descriptor) {
  struct stat status = {};
  return Pass({SYS_fstat, descriptor, reinterpret_cast<long>(&status), 0}) == 0 &&
         S_ISREG(status.st_mode);
}

bool IsConcerned(const Call& call) {
  if (!active || !MovesData(call.number)) return active;
  return call.a > STDERR_FILENO && IsFile(call.a);
}

/// Whether this call is to be disturbed.
bool Count(const Call& call) {
  const std::array<bool, 3> within{true, MovesData(call.number), IsWrite(call.number)};
  for (std::size_t i = 0; i < counts.size(); ++i) counts[i] += within[i] ? 1 : 0;
  const auto domain = static_cast<std::size_t>(fault.domain);
  if (fault.kind == Kind::None || !within[domain]) return false;
  return fault.forEver ? counts[domain] >= fault.at : counts[domain] == fault.at;
}

long HalfWrite(Call call) {
  call.c = std::max(call.c / 2, 1L);
  return Pass(call);
}

void Die() {
  Pass({SYS_kill, getpid(), SIGKILL, 0});
}

long Disturb(const Call& call) {
  if (fault.kind == Kind::Error) return -fault.error;
  if (fault.kind == Kind::Short) return HalfWrite(call);
  if (fault.kind == Kind::Torn) HalfWrite(call);
  Die();
  return 0;
}

/// A process that dies loses nothing of what it handed to the kernel, so that the disk need not be
/// waited for.
long Answer(const Call& call) {
  if (!IsConcerned(call)) return Pass(call);
  if (Count(call)) return Disturb(call);
  return call.number == SYS_fsync ? 0 : Pass(call);
}

void OnCall(int, siginfo_t* info, void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  registers[REG_RAX] =
      Answer({info->si_syscall, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX]});
}

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

void TrapCalls() {
  struct sigaction action = {};
  action.sa_sigaction = OnCall;
  action.sa_flags = SA_SIGINFO;
  constexpr auto ret = static_cast<unsigned short>(BPF_RET | BPF_K);
  constexpr auto load = static_cast<unsigned short>(BPF_LD | BPF_W | BPF_ABS);
  constexpr auto equal = static_cast<unsigned short>(BPF_JMP | BPF_JEQ | BPF_K);
  std::array<sock_filter, 13> filter{{
      {load, 0, 0, offsetof(seccomp_data, args) + 5 * sizeof(__u64)},
      {equal, 10, 0, kPass},
      {load, 0, 0, offsetof(seccomp_data, nr)},
      {equal, 7, 0, SYS_read},
      {equal, 6, 0, SYS_write},
      {equal, 5, 0, SYS_lseek},
      {equal, 4, 0, SYS_fsync},
      {equal, 3, 0, SYS_rename},
      {equal, 2, 0, SYS_mkdir},
      {equal, 1, 0, SYS_rmdir},
      {equal, 0, 1, SYS_unlink},
      {ret, 0, 0, SECCOMP_RET_TRAP},
      {ret, 0, 0, SECCOMP_RET_ALLOW},
  }};
  const sock_fprog program{filter.size(), filter.data()};
  if (sigaction(SIGSYS, &action, nullptr) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    std::perror("no calls can be trapped");
    std::abort();
  }
}

}  // namespace

extern "C" void FaultsBegin() {
  ReadFault();
  TrapCalls();
  active = true;
}

extern "C" void FaultsEnd() {
  active = false;
  const char* path = std::getenv("KESTDB_FAULT_COUNTS");
  if (path == nullptr) return;
  std::FILE* file = std::fopen(path, "w");
  if (file == nullptr) std::abort();
  std::fprintf(file, "%ld %ld %ld\n", counts[0], counts[1], counts[2]);
  std::fclose(file);
}
