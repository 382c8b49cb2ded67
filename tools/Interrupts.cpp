#include "Interrupts.h"

#include <csignal>

#include "Ending.h"

namespace {

volatile std::sig_atomic_t caught = 0;

void Note(int signal) {
  if (caught == 0) {
    caught = signal;
    return;
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

void CatchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = Note;
  action.sa_flags = SA_RESTART;  // the library's reads and writes go on
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

int InterruptSignal() {
  return caught;
}

void StopIfInterrupted() {
  if (caught != 0) throw Interrupted();
}
