#pragma once

#include <sys/resource.h>

#include <csignal>
#include <stdexcept>

/// No file of this process can be written at or behind `bytes` while this object lives: the write
/// fails with EFBIG, as one to a full disk does with ENOSPC.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(unsigned long bytes) : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_oldLimit);
    const rlimit limit{bytes, m_oldLimit.rlim_max};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("no limit of file sizes");
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_oldLimit);
    std::signal(SIGXFSZ, m_oldHandler);
  }

 private:
  void (*m_oldHandler)(int);
  rlimit m_oldLimit{};
};
