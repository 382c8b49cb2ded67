#pragma once

#include <sys/types.h>

#include <functional>

/// A process of its own in a test of several ones. It goes on in steps: from one pause in its body
/// to the next, or to the end of the body, and only when the test asks for it. EXPECT_ and ASSERT_
/// can be used in the body; what fails there, or an exception, fails the test that awaits the end.
///
/// Make it while the test holds nothing that two processes must not share, an open study above
/// all. No process outlives its test, and none takes longer than two minutes: whatever waits for
/// one throws std::runtime_error then.
class OtherProcess {
 public:
  using Pause = std::function<void()>;
  using Body = std::function<void(const Pause& pause)>;

  /// Starts the process and awaits its first pause, or its end.
  explicit OtherProcess(const Body& body);
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess();

  /// Lets it go on, and doesn't wait.
  void Go();
  /// Waits for its next pause.
  void AwaitPause();
  /// Whether it came to its next pause or its end by now.
  bool IsThere() const;
  /// Waits for its end and expects it to be a good one.
  void AwaitEnd();

  /// To the next pause.
  void Step() {
    Go();
    AwaitPause();
  }
  /// To the end.
  void Finish() {
    Go();
    AwaitEnd();
  }

  /// Ends it at once where it is, as SIGKILL does.
  void Kill();

 private:
  [[noreturn]] static void Run(const Body& body, int test);
  bool Receive();
  void Reap();

  pid_t m_process = -1;
  int m_channel = -1;  // to the process; it has the other end
  bool m_ended = false;
};

/// Runs `body` in a process of its own from its start to its end.
void InOtherProcess(const std::function<void()>& body);
