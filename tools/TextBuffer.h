#pragma once

#include <cstdio>
#include <cstdlib>
#include <new>

/// A stream into memory. What a command prints is kept here until the study is closed: whoever
/// reads the output may take his time, and nobody else should have to wait for the lock.
class TextBuffer {
 public:
  TextBuffer() : stream_(open_memstream(&text_, &size_)) {
    if (stream_ == nullptr) throw std::bad_alloc();
  }
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;
  ~TextBuffer() {
    std::fclose(stream_);
    std::free(text_);
  }

  std::FILE* Stream() const { return stream_; }
  void WriteTo(std::FILE* out) const {
    std::fflush(stream_);
    std::fwrite(text_, 1, size_, out);
  }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

/// A text that is printed at the end of its life, however a command ends.
class LateText {
 public:
  LateText() = default;
  LateText(const LateText&) = delete;
  LateText& operator=(const LateText&) = delete;
  ~LateText() { text_.WriteTo(stdout); }

  std::FILE* Stream() const { return text_.Stream(); }

 private:
  TextBuffer text_;
};
