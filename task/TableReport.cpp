#include "task/TableReport.h"

#include <utility>

#include "environment/Utilities.h"

namespace {

constexpr int kNameWidth = 14;

template <class Split>
std::vector<std::string> Pieces(std::string text, Split split) {
  std::vector<std::string> pieces(1);
  if (!split(text, pieces.back())) return pieces;
  std::string piece;
  while (!text.empty() && split(text, piece)) pieces.push_back(piece);
  return pieces;
}

}  // namespace

std::vector<std::string> kestdb::NamePieces(std::string name) {
  return Pieces(std::move(name), [](std::string& rest, std::string& piece) {
    return CKUtil::SplitName(rest, kNameWidth, piece);
  });
}

std::vector<std::string> kestdb::TextPieces(std::string text, int columns) {
  return Pieces(std::move(text), [columns](std::string& rest, std::string& piece) {
    return COSUtil::SplitLine(rest, columns, piece);
  });
}

void kestdb::PrintTableHead(std::FILE* stream, const char* title,
                            std::initializer_list<const char*> columns) {
  std::fprintf(stream, "%s", title);
  PrintBar(stream, '=');
  for (const char* line : columns) std::fprintf(stream, "%s", line);
}
