#include "tests/support/OtherProcess.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace {

constexpr unsigned kLongestSeconds = 120;

bool HasNews(int channel, int milliseconds) {
  pollfd watched{channel, POLLIN, 0};
  return poll(&watched, 1, milliseconds) == 1;
}

void SendByte(int channel) {
  const char byte = 0;
  if (send(channel, &byte, 1, MSG_NOSIGNAL) != 1) throw std::runtime_error("nobody listens");
}

bool ReceiveByte(int channel) {
  char byte = 0;
  return recv(channel, &byte, 1, 0) == 1;
}

}  // namespace

OtherProcess::OtherProcess(const Body& body) {
  int channels[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channels) != 0) {
    throw std::runtime_error("no channel between processes");
  }
  std::fflush(nullptr);  // or both processes would write what waits in the buffers
  m_process = fork();
  if (m_process == 0) {
    close(channels[0]);
    Run(body, channels[1]);
  }
  close(channels[1]);
  m_channel = channels[0];
  if (m_process < 0) {
    close(m_channel);
    throw std::runtime_error("no other process");
  }
  m_ended = !Receive();
}

OtherProcess::~OtherProcess() {
  Kill();
  close(m_channel);
}

/// What the process itself does. It never returns into the test.
void OtherProcess::Run(const Body& body, int test) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  alarm(kLongestSeconds);
  bool good = false;
  try {
    body([test] {
      SendByte(test);
      if (!ReceiveByte(test)) _exit(EXIT_FAILURE);
    });
    good = !testing::Test::HasFailure();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "the other process ended by an exception: %s\n", error.what());
  }
  std::fflush(nullptr);
  _exit(good ? EXIT_SUCCESS : EXIT_FAILURE);
}

void OtherProcess::Go() {
  if (!m_ended) SendByte(m_channel);
}

/// True at a pause, false at the end.
bool OtherProcess::Receive() {
  if (!HasNews(m_channel, 1000 * static_cast<int>(kLongestSeconds))) {
    throw std::runtime_error("the other process takes too long");
  }
  return ReceiveByte(m_channel);
}

void OtherProcess::AwaitPause() {
  if (m_ended || !Receive()) {
    m_ended = true;
    throw std::runtime_error("the other process ended before its next pause");
  }
}

bool OtherProcess::IsThere() const {
  return m_ended || HasNews(m_channel, 0);
}

void OtherProcess::AwaitEnd() {
  if (!m_ended && Receive()) throw std::runtime_error("the other process has another pause");
  m_ended = true;
  Reap();
}

void OtherProcess::Reap() {
  int status = 0;
  if (m_process < 0 || waitpid(m_process, &status, 0) != m_process) {
    throw std::runtime_error("the other process is gone");
  }
  m_process = -1;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS)
      << "the other process ended with status " << status;
}

void OtherProcess::Kill() {
  if (m_process < 0) return;
  kill(m_process, SIGKILL);
  waitpid(m_process, nullptr, 0);
  m_process = -1;
  m_ended = true;
}

void InOtherProcess(const std::function<void()>& body) {
  OtherProcess process([&body](const OtherProcess::Pause&) { body(); });
  process.AwaitEnd();
}
