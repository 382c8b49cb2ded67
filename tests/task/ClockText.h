#pragma once

/// While it exists, the time is what a test says: a program with ClockText.cpp among its sources
/// has a double of the C library's ctime. `text` may be null and has to outlive the object.
class ClockText {
 public:
  explicit ClockText(const char* text);
  ClockText(const ClockText&) = delete;
  ClockText& operator=(const ClockText&) = delete;
  ~ClockText();
};
