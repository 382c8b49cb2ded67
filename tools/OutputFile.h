#pragma once

#include <string>

/// A file that gets its name when it is whole; whatever ends the work before leaves nothing behind.
class OutputFile {
 public:
  /// THROWS Refusal when the file can't be made, or exists already and `replace` is not set.
  OutputFile(const std::string& path, bool replace);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  /// Where to write until then: an empty file.
  const std::string& PartPath() const { return part_; }
  /// REQUIRES that all is written and closed. THROWS Refusal.
  void Finish();

 private:
  std::string path_;
  std::string part_;
  bool finished_ = false;
};
