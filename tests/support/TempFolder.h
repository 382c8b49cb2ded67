#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

/// A folder of its own for a test, removed with all in it at the end.
class TempFolder {
 public:
  TempFolder() {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& Path() const { return path_; }
  /// The path of a file in the folder.
  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_ = std::filesystem::temp_directory_path() / "kestdb-XXXXXX";
};
