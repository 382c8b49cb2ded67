#include "tests/oldfiles/OldStudy.h"

#include <sstream>

#include "tests/support/Bytes.h"

std::string OldBytes(const std::string& name) {
  std::istringstream text(ReadBytes(std::string(KESTDB_OLDFILES "/") + name + ".hex"));
  std::string digits;
  for (std::string line; std::getline(text, line);) digits += line.substr(0, line.find('#'));
  return Bytes(digits);
}

OldFiles::OldFiles(const OldCase& which) {
  if (which.index == OldIndex::Stale) {
    OpenDatabase(BasePath());
    CloseDatabase();
  }
  WriteBytes(DataPath(), OldBytes(which.later ? "later-study" : "early-study"));
}

OldFiles::~OldFiles() {
  try {
    CloseDatabase();
  } catch (...) {
    // The test has said what it had to.
  }
}
