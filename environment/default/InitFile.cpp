#include <fstream>

#include "environment/Utilities.h"

// A file that can't be read is as an empty one. The limit is far above any settings, so that a path
// to something endless does no harm.
CInitFile::CInitFile(std::string& path, bool /*flag*/) {
  constexpr std::streamsize limit = 1 << 20;
  std::ifstream file(path, std::ios::binary);
  m_strText.resize(limit);
  file.read(m_strText.data(), limit);
  m_strText.resize(static_cast<std::size_t>(file.gcount()));
}
