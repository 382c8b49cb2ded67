#include <algorithm>

#include "environment/Utilities.h"

bool CKUtil::SplitName(std::string& name, int columns, std::string& piece) {
  const auto width = static_cast<std::size_t>(std::max(columns, 1));
  piece = name.substr(0, width);
  piece.erase(std::min(piece.find('\n'), piece.size()));
  const bool taken = !name.empty();
  const bool endsLine = piece.size() < name.size() && name[piece.size()] == '\n';
  name.erase(0, piece.size() + (endsLine ? 1 : 0));
  return taken;
}
