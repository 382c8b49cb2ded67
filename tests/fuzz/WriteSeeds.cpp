#include <cstdio>
#include <filesystem>

#include "tests/fuzz/Target.h"
#include "tests/support/Bytes.h"

/// Writes the inputs that a target starts from into a folder.
int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  std::filesystem::create_directories(argv[1]);
  int number = 0;
  for (const std::string& seed : Seeds()) {
    WriteBytes(std::string(argv[1]) + "/seed-" + std::to_string(number++), seed);
  }
}
