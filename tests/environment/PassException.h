#pragma once

#include <cstdlib>
#include <stdexcept>

#include "store/KestErr.h"

/// Has the library log a std::exception through LException, and ends the process.
[[noreturn]] inline void PassExceptionAndExit() {
  try {
    try {
      throw std::runtime_error("from outside");
    } catch (...) {
      kestdb::LogAndRethrow("engine.cpp", 8);
    }
  } catch (const std::runtime_error&) {
    std::_Exit(0);
  }
}
