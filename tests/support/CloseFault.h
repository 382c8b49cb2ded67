#pragma once

/// While one lives, every fclose of the program closes its stream and reports a failure. For test
/// programs with CloseFault.cpp among their sources.
class CloseFault {
 public:
  CloseFault();
  CloseFault(const CloseFault&) = delete;
  CloseFault& operator=(const CloseFault&) = delete;
  ~CloseFault();
};
