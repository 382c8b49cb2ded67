#include <algorithm>

#include "environment/Utilities.h"

namespace {

/// Where to cut a line that is longer than `width`: at the last blank that fits, unless only blanks
/// would stand before it.
std::size_t CutOf(const std::string& text, std::size_t width) {
  const std::size_t blank = text.rfind(' ', width);
  const std::size_t word = text.find_first_not_of(' ');
  return blank == std::string::npos || word == std::string::npos || blank < word ? width : blank;
}

}  // namespace

bool COSUtil::SplitLine(std::string& text, int columns, std::string& piece) {
  piece.clear();
  if (text.empty()) return false;
  const auto width = static_cast<std::size_t>(std::max(columns, 1));
  std::size_t end = std::min(text.substr(0, width + 1).find('\n'), text.size());
  if (end > width) {
    const std::size_t cut = CutOf(text, width);
    piece = text.substr(0, cut);
    piece.erase(piece.find_last_not_of(' ') + 1);
    end = std::min(text.find_first_not_of(' ', cut), text.size());
  } else {
    piece = text.substr(0, end);
  }
  // The line feed that ends the piece goes with it.
  if (end < text.size() && text[end] == '\n') ++end;
  text.erase(0, end);
  return true;
}
