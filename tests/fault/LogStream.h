#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "environment/Logging.h"

/// What is printed to the log stream while one lives.
class LogStream {
 public:
  LogStream() { fKLog = open_memstream(&text_, &size_); }
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;
  ~LogStream() {
    std::fclose(fKLog);
    fKLog = old_;
    std::free(text_);
  }

  std::string Text() const {
    std::fflush(fKLog);
    return {text_, size_};
  }

 private:
  std::FILE* old_ = fKLog;
  char* text_ = nullptr;
  std::size_t size_ = 0;
};
